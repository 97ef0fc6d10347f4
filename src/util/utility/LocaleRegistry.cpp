#include "util/utility/LocaleRegistry.h"

namespace Orvo {

LocaleRegistry& LocaleRegistry::get() {
  static LocaleRegistry registry;
  return registry;
}

LocalizedMessage LocaleRegistry::registerMessage(std::wstring const& key, std::wstring const& defaultText) {
  {
    std::lock_guard<std::mutex> const lock(m_mutex);
    m_defaults.insert({key, defaultText});
  }
  return LocalizedMessage(key, defaultText);
}

std::wstring LocaleRegistry::lookup(std::wstring const& key, std::wstring const& defaultText) const {
  std::lock_guard<std::mutex> const lock(m_mutex);
  auto const table = m_translations.find(m_locale);
  if (table != m_translations.end()) {
    auto const entry = table->second.find(key);
    if (entry != table->second.end()) return entry->second;
  }
  return defaultText;
}

bool LocaleRegistry::isRegistered(std::wstring const& key) const {
  std::lock_guard<std::mutex> const lock(m_mutex);
  return m_defaults.count(key) != 0;
}

void LocaleRegistry::addTranslation(std::string const& locale, std::wstring const& key, std::wstring const& text) {
  std::lock_guard<std::mutex> const lock(m_mutex);
  m_translations[locale][key] = text;
}

void LocaleRegistry::setLocale(std::string const& locale) {
  std::lock_guard<std::mutex> const lock(m_mutex);
  m_locale = locale;
}

std::string LocaleRegistry::locale() const {
  std::lock_guard<std::mutex> const lock(m_mutex);
  return m_locale;
}

void LocaleRegistry::clearTranslations() {
  std::lock_guard<std::mutex> const lock(m_mutex);
  m_translations.clear();
  m_locale = defaultLocale;
}

}  // namespace Orvo
