#pragma once

#include <string>
#include <string_view>

namespace driverhost {

// Standard output, collected until it is flushed. After a write that failed, the rest is dropped.
class Output {
 public:
  void Write(std::string_view text) { m_Pending += text; }
  void Flush();

  // The errno of the write that failed; 0 if none has.
  int Error() const { return m_Error; }

 private:
  std::string m_Pending;
  int m_Error = 0;
};

}  // namespace driverhost
