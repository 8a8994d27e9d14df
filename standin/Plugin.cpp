#include "standin/Plugin.h"

#include <dlfcn.h>

#include <filesystem>
#include <stdexcept>

namespace standin {

Plugin::Plugin(const std::string& file)
    : m_Library(dlopen(std::filesystem::absolute(file).c_str(), RTLD_NOW | RTLD_LOCAL)) {
  if (!m_Library) throw std::runtime_error(dlerror());
  m_Entry = reinterpret_cast<CreationFunc (*)()>(dlsym(m_Library, "GetCreationFunc"));
  if (!m_Entry) {
    const std::string reason = dlerror();
    dlclose(m_Library);
    throw std::runtime_error(reason);
  }
}

Plugin::~Plugin() { dlclose(m_Library); }

CreationFunc Plugin::GetCreationFunc() const { return m_Entry(); }

}  // namespace standin
