#pragma once
// The process-wide table of user-facing texts. The library registers each
// text with its English wording as both key and default; a host that wants
// another language adds translations for a locale and selects it.
//
// The registry is the one piece of mutable global state of the texts, so it
// guards itself with a mutex: a host may install translations from another
// thread than the one that reads files.

#include <map>
#include <mutex>
#include <string>

#include "util/utility/LocalizedMessage.h"

namespace Orvo {

class LocaleRegistry {
public:
  /// The locale of the built-in texts.
  static constexpr char const* defaultLocale = "en";

  /// The one registry of the process.
  static LocaleRegistry& get();

  LocaleRegistry(LocaleRegistry const&) = delete;
  LocaleRegistry& operator=(LocaleRegistry const&) = delete;

  /// Records `key` with its default text (a first registration wins) and
  /// hands back the message, whose text() follows the current locale.
  LocalizedMessage registerMessage(std::wstring const& key, std::wstring const& defaultText);
  /// The text for `key` in the current locale, else `defaultText`.
  std::wstring lookup(std::wstring const& key, std::wstring const& defaultText) const;
  /// Whether `key` has been registered.
  bool isRegistered(std::wstring const& key) const;

  /// Adds or replaces the translation of `key` for `locale`.
  void addTranslation(std::string const& locale, std::wstring const& key, std::wstring const& text);
  /// Selects the locale whose translations lookup() uses.
  void setLocale(std::string const& locale);
  std::string locale() const;
  /// Drops every translation and returns to the default locale.
  void clearTranslations();

private:
  LocaleRegistry() = default;

  mutable std::mutex m_mutex;
  std::string m_locale = defaultLocale;
  std::map<std::wstring, std::wstring> m_defaults;
  std::map<std::string, std::map<std::wstring, std::wstring>> m_translations;
};

}  // namespace Orvo
