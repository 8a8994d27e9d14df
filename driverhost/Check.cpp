#include "driverhost/Check.h"

#include "driverhost/CallGuard.h"
#include "driverhost/CaseRun.h"
#include "driverhost/Count.h"
#include "driverhost/Coverage.h"
#include "driverhost/ImageRoot.h"
#include "driverhost/Interrupt.h"
#include "driverhost/Output.h"

#include <nlohmann/json.hpp>

#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <exception>
#include <filesystem>
#include <stdexcept>

namespace driverhost {

namespace {

using Json = nlohmann::ordered_json;

// What a case's own process does; what the case covers goes to `report` as JSON.
int PlayCase(const CheckOptions& options, const std::string& path, const std::string& imageRoot,
             int report) {
  try {
    Output output;
    CallGuard::Install(output, options.timeout);
    const standin::Plugin plugin(options.driver);
    const LifeOptions life{imageRoot};
    CaseRun run(options, path, plugin, life, output);
    const int status = run.Run();
    const std::string covered = run.Covered().dump();
    if (write(report, covered.data(), covered.size()) < 0) std::perror("driverhost");
    return status;
  } catch (const SessionError& error) {
    std::fprintf(stderr, "%s\n", error.what());
    return s_Wrong;
  } catch (const std::exception& error) {
    std::fprintf(stderr, "driverhost: %s\n", error.what());
    return s_Failed;
  }
}

std::string ReadAll(int descriptor) {
  std::string text;
  std::array<char, 4096> part;
  ssize_t size = 0;
  while ((size = read(descriptor, part.data(), part.size())) > 0 || (size < 0 && errno == EINTR)) {
    if (size > 0) text.append(part.data(), static_cast<std::size_t>(size));
  }
  return text;
}

struct Ended {
  int status;
  Json covered;
};

// A process that ended early has said why and in which step; this adds in which case.
int StatusOf(const std::string& path, int waited, bool early) {
  if (!WIFEXITED(waited)) {
    std::fprintf(stderr, "%s: ended by SIG%s\n", path.c_str(), sigabbrev_np(WTERMSIG(waited)));
    return s_Failed;
  }
  const int status = WEXITSTATUS(waited);
  if (!early || status == s_Wrong) return status;
  std::fprintf(stderr, "%s: not played to its end\n", path.c_str());
  return s_Failed;
}

Ended InOwnProcess(const CheckOptions& options, const std::string& path) {
  const ImageRoot imageRoot("");
  int ends[2];
  if (pipe(ends) != 0) throw std::runtime_error(std::string("no pipe: ") + std::strerror(errno));
  const pid_t child = fork();
  if (child < 0) throw std::runtime_error(std::string("no process: ") + std::strerror(errno));
  if (child == 0) {
    close(ends[0]);
    std::exit(PlayCase(options, path, imageRoot.Path(), ends[1]));
  }
  close(ends[1]);
  Ended ended{s_Failed, Json::parse(ReadAll(ends[0]), nullptr, false)};
  close(ends[0]);
  int waited = 0;
  while (waitpid(child, &waited, 0) < 0 && errno == EINTR) {
  }
  ended.status = StatusOf(path, waited, ended.covered.is_discarded());
  std::error_code ignored;
  std::filesystem::remove_all(imageRoot.Path(), ignored);
  return ended;
}

}  // namespace

int RunCheck(const CheckOptions& options) {
  int status = s_Ran;
  std::size_t good = 0;
  std::size_t played = 0;
  Json covered = Json::object();
  for (const std::string& path : options.cases) {
    if (Interrupted()) break;
    const Ended ended = InOwnProcess(options, path);
    ++played;
    if (ended.status == s_Ran) ++good;
    if (status == s_Ran) status = ended.status;
    if (ended.covered.is_object()) AddCounts(covered, ended.covered);
  }
  if (options.coverage) {
    std::puts(options.json ? covered.dump().c_str() : CoverageTable(covered).c_str());
  }
  std::fprintf(stderr, "%s: %zu ok, %zu failed%s\n", Count(played, "case").c_str(), good,
               played - good, Interrupted() ? ", interrupted" : "");
  return status;
}

}  // namespace driverhost
