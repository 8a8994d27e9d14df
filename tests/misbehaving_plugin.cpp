// A plug-in whose driver does to its host what no driver should: on command, or wherever $MISBEHAVE names a moment and
// what is done in it, as in "constructor CRASH".

#include "host/TqBaseProxyDriver.h"
#include "host/TqXML.h"

#include <pthread.h>

#include <fcntl.h>
#include <poll.h>
#include <sys/stat.h>
#include <sys/time.h>
#include <unistd.h>

#include <clocale>
#include <csignal>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <stdexcept>
#include <string>
#include <thread>

namespace {

struct Foreign {};

volatile std::uintptr_t s_NoAddress = 64;
volatile int s_Result = 0;

// In the folder d: some in a new folder, one that takes a written one's place, one in a folder that moves.
void WriteFiles() {
  s_Result = std::system(
      "mkdir -p d/a/b && echo 1 >d/a/b/y && echo 1 >d/a/b/x && echo 1 >d/t && mv d/t d/u && mkdir d/m && mv d/m d/n && "
      "echo 1 >d/n/z && mkfifo d/f && : <>d/f");
}

int Overflow(int depth) {
  volatile int here = depth;
  return here == 0 ? 0 : Overflow(here + 1) + here;
}

void Wait() {
  for (;;) pause();
}

void WriteToEach(const char* text) {
  for (int descriptor = 1; descriptor < 1024; ++descriptor) {
    s_Result = static_cast<int>(write(descriptor, text, std::strlen(text)));
  }
}

constexpr struct {
  const char* name;
  void (*act)();
} s_Acts[] = {
    {"CRASH", [] { std::raise(SIGSEGV); }},
    {"DEREFERENCE", [] { *reinterpret_cast<volatile int*>(s_NoAddress) = 0; }},
    {"REALTIME", [] { std::raise(64); }},
    {"TERMINATE", [] { kill(getpid(), SIGTERM); }},
    {"KILL", [] { kill(getpid(), SIGKILL); }},
    {"STOP", [] { kill(getpid(), SIGSTOP); }},
    {"ABORT", [] { std::abort(); }},
    {"EXIT", [] { std::exit(0); }},
    {"LEAVE", [] { _exit(0); }},
    {"QUICKLY", [] { std::quick_exit(0); }},
    {"END THREAD", [] { pthread_exit(nullptr); }},
    {"LOOP",
     [] {
       for (volatile bool on = true; on;) {
       }
     }},
    {"WAIT", &Wait},
    {"DEAF",
     [] {
       for (int signal = 1; signal < 65; ++signal) std::signal(signal, SIG_IGN);
       Wait();
     }},
    {"OVERFLOW", [] { Overflow(1); }},
    {"THROW", [] { throw Foreign(); }},
    {"THROW WORDS", [] { throw std::runtime_error("a\n\x1B" + std::string(5000, 'x')); }},
    {"CLOSE",
     [] {
       for (int descriptor = 0; descriptor < 1024; ++descriptor) close(descriptor);
     }},
    {"NONSENSE", [] { WriteToEach("{\"over\":1}\n"); }},
    {"HALF", [] { WriteToEach("\n{\"to\":"); }},
    {"PRINT", [] { std::puts("\x1Bprinted"), std::fputs("told", stderr); }},
    {"THREAD", [] { std::thread(&Wait).detach(); }},
    {"PROCESS", [] { s_Result = std::system("sleep 1000 &"); }},
    {"DIRECTORY", [] { s_Result = chdir("/"); }},
    {"UMASK", [] { umask(0123); }},
    {"LOCALE", [] { std::setlocale(LC_ALL, "C.UTF-8"); }},
    {"HANDLER", [] { std::signal(SIGUSR1, [](int) {}); }},
    {"MASK",
     [] {
       sigset_t set;
       sigfillset(&set);
       sigprocmask(SIG_BLOCK, &set, nullptr);
     }},
    {"DESCRIPTOR", [] { s_Result = open("/dev/null", O_RDONLY); }},
    {"TIMER",
     [] {
       const itimerval hour{{3600, 0}, {3600, 0}};
       setitimer(ITIMER_REAL, &hour, nullptr);
     }},
    {"NAP",
     [] {
       const timespec nap{0, 600'000'000};
       if (poll(nullptr, 0, 600) != 0 || nanosleep(&nap, nullptr) != 0) std::abort();
     }},
    {"WRITE", &WriteFiles},
    {"WRITE BADLY", [] { std::fclose(std::fopen("d/a\x1B", "w")); }},
    {"RELEASE", [] { TqXML::CreateXmlNode()->Release(); }},
    {"MOVE", [] { s_Result = symlink("../s", "d/m") + std::rename("d/m", "d/l"); }},
    {"HOLD", [] { TqXML::CreateXmlNode()->AddRef(); }},
};

void At(const std::string& moment) {
  const char* const wanted = std::getenv("MISBEHAVE");
  for (const auto& row : s_Acts) {
    if (wanted && moment + ' ' + row.name == wanted) row.act();
  }
}

const struct Library {
  Library() { At("load"); }
  ~Library() { At("unload"); }
} s_Library;

class Misbehaving : public TqBaseProxyDriver {
 public:
  explicit Misbehaving(IInstanceManager& im) : TqBaseProxyDriver(im, 5001, DriverMultiplicity::One) {
    for (const auto& row : s_Acts) {
      m_CmdDispatcher.RegisterCmd(row.name, [act = row.act](const ICmdMessage&, ICmdReturn*) { act(); });
    }
    m_CmdDispatcher.RegisterCmd("ACT", [](const ICmdMessage&, ICmdReturn*) {
      At("command");
      std::thread([] { At("thread"); }).join();
    });
    m_NtfDispatcher.RegisterNtf("ACT", [](const IBindMessage&) { At("notification"); });
    m_UICmdDispatcher.RegisterUICmd("ACT", [](const ICmdMessage&) {
      At("request");
      return TqXML::CreateXmlNode("ANSWER", "");
    });
    At("constructor");
  }
  ~Misbehaving() override { At("destructor"); }

  tq::auto_com<TqXML::INode> GetPersistState(unsigned long) override {
    At("state");
    return {};
  }
  void RegisterCommands() override {}
  void RegisterNotifications() override {}
  void RegisterConditionals() override {}
  void RegisterVariables() override { At("initialization"); }
  void UnregisterVariables() override {}
};

}  // namespace

CreationFunc GetCreationFunc() {
  return [](IInstanceManager& im) -> IDriver* { return new Misbehaving(im); };
}
