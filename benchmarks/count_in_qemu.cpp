// A plug-in for qemu's user mode: counts the instructions of a program with one thread and writes
// their number to qemu's log, where `-d plugin` shows it.
#include <cstddef>
#include <cstdint>
#include <string>

// What is used of plug-in interface 1 of qemu 7.2, whose header (include/qemu/qemu-plugin.h) Debian
// does not package.
extern "C" {
struct qemu_plugin_tb;  // a block of instructions with one entry
enum qemu_plugin_cb_flags { QEMU_PLUGIN_CB_NO_REGS };
using qemu_plugin_id_t = std::uint64_t;
void qemu_plugin_register_vcpu_tb_trans_cb(qemu_plugin_id_t,
                                           void (*)(qemu_plugin_id_t, qemu_plugin_tb*));
void qemu_plugin_register_vcpu_tb_exec_cb(qemu_plugin_tb*, void (*)(unsigned, void*),
                                          qemu_plugin_cb_flags, void*);
void qemu_plugin_register_atexit_cb(qemu_plugin_id_t, void (*)(qemu_plugin_id_t, void*), void*);
std::size_t qemu_plugin_tb_n_insns(const qemu_plugin_tb*);
void qemu_plugin_outs(const char*);

int qemu_plugin_version = 1;
}

namespace {

std::uint64_t executed = 0;

void Run(unsigned /*processor*/, void* instructions) {
  executed += reinterpret_cast<std::uintptr_t>(instructions);
}

void Translate(qemu_plugin_id_t /*id*/, qemu_plugin_tb* block) {
  void* instructions = reinterpret_cast<void*>(qemu_plugin_tb_n_insns(block));
  qemu_plugin_register_vcpu_tb_exec_cb(block, &Run, QEMU_PLUGIN_CB_NO_REGS, instructions);
}

void Report(qemu_plugin_id_t /*id*/, void* /*unused*/) {
  qemu_plugin_outs((std::to_string(executed) + '\n').c_str());
}

}  // namespace

extern "C" int qemu_plugin_install(qemu_plugin_id_t id, const void* /*info*/, int /*argc*/,
                                   char** /*argv*/) {
  qemu_plugin_register_vcpu_tb_trans_cb(id, &Translate);
  qemu_plugin_register_atexit_cb(id, &Report, nullptr);
  return 0;
}
