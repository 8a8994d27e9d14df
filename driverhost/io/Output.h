#pragma once

#include <string>
#include <string_view>

namespace driverhost {

// A stream to a descriptor, collected until it is flushed. After a write that failed, the rest is
// dropped.
class Output {
 public:
  explicit Output(int descriptor) : m_Descriptor(descriptor) {}

  void Write(std::string_view text) { m_Pending += text; }
  void Flush();

  // Flushes when much is pending.
  void FlushMuch();

  // The errno of the write that failed; 0 if none has.
  int Error() const { return m_Error; }

 private:
  const int m_Descriptor;
  std::string m_Pending;
  int m_Error = 0;
};

// Where the program speaks to its user: traffic and results, and beside them everything else.
class Console {
 public:
  virtual ~Console() = default;

  virtual void Write(std::string_view text) = 0;

  // A line for standard error, without its line break, after all that was written before.
  virtual void Tell(std::string_view line) = 0;

  // What was written can be seen.
  virtual void Flush() = 0;

  // The errno of the write to standard output that failed; 0 if none has.
  virtual int Error() const = 0;
};

// The program's own standard output and error.
class StandardConsole : public Console {
 public:
  void Write(std::string_view text) override { m_Out.Write(text); }
  void Tell(std::string_view line) override;
  void Flush() override { m_Out.Flush(); }
  int Error() const override { return m_Out.Error(); }

 private:
  Output m_Out{1};
  Output m_Error{2};
};

// Keeps what is said, until it is said on another console; at most so much of it.
class HeldConsole : public Console {
 public:
  static constexpr std::size_t s_MostBytes = std::size_t{16} << 20U;

  void Write(std::string_view text) override { Hold(m_Out, text); }
  void Tell(std::string_view line) override;
  void Flush() override {}
  int Error() const override { return 0; }

  void SayOn(Console& console);

  // All of it that was told.
  const std::string& Text() const { return m_Error; }

 private:
  void Hold(std::string& text, std::string_view more);

  std::string m_Out;
  std::string m_Error;
  bool m_Full = false;
};

}  // namespace driverhost
