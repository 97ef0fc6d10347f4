#pragma once
namespace mtkit_tool {
char const* versionString();
}
