#include "ZtRunner.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <poll.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <fstream>
#include <stdexcept>
#include <thread>

#include "support/Files.h"
#include "support/TempDir.h"

namespace zt::testing {

namespace {

// Reads both pipes until the child closes them, without dead-locking on a full pipe.
void Drain(int OutFd, int ErrFd, std::string& Out, std::string& Err) {
  pollfd Fds[2] = {{OutFd, POLLIN, 0}, {ErrFd, POLLIN, 0}};
  int Open = 2;
  char Buf[4096];
  while (Open > 0) {
    if (poll(Fds, 2, -1) < 0) continue;
    for (int I = 0; I < 2; ++I) {
      if (Fds[I].fd < 0 || !(Fds[I].revents & (POLLIN | POLLHUP | POLLERR))) continue;
      ssize_t N = read(Fds[I].fd, Buf, sizeof Buf);
      if (N > 0) {
        (I == 0 ? Out : Err).append(Buf, N);
      } else {
        close(Fds[I].fd);
        Fds[I].fd = -1;
        --Open;
      }
    }
  }
}

// Sends Signal to Pid once the file at LogPath contains Needle (or the child
// has gone); runs beside Drain so the child's pipes never fill up.
std::thread SignalWhen(pid_t Pid, std::string LogPath, std::string Needle, int Signal, int Times) {
  return std::thread([=] {
    for (int I = 0; I < 6000; ++I) {  // at most a minute
      if (kill(Pid, 0) != 0) return;
      if (ReadText(LogPath).find(Needle) != std::string::npos) {
        // A few milliseconds apart, as fast as a user's keys: signals sent
        // at once would merge into one.
        for (int T = 0; T < Times; ++T) {
          if (T > 0) std::this_thread::sleep_for(std::chrono::milliseconds(5));
          kill(Pid, Signal);
        }
        return;
      }
      std::this_thread::sleep_for(std::chrono::milliseconds(10));
    }
  });
}

struct SignalPlan {
  std::string LogPath, Needle;
  int Signal = 0;
  int Times = 1;
};

ZtResult Spawn(const std::string& Dir, const std::vector<std::string>& Args,
               const SignalPlan* Plan = nullptr) {
  ZtResult R;
  int OutPipe[2], ErrPipe[2];
  if (pipe(OutPipe) != 0 || pipe(ErrPipe) != 0) throw std::runtime_error("pipe failed");
  std::string Exe = ZtPath();
  pid_t Pid = fork();
  if (Pid == 0) {
    dup2(OutPipe[1], 1);
    dup2(ErrPipe[1], 2);
    close(OutPipe[0]), close(OutPipe[1]), close(ErrPipe[0]), close(ErrPipe[1]);
    int Null = open("/dev/null", O_RDONLY);
    if (Null >= 0) dup2(Null, 0);
    if (chdir(Dir.c_str()) != 0) _exit(127);
    std::vector<char*> Argv;
    Argv.push_back(Exe.data());
    for (const auto& A : Args) Argv.push_back(const_cast<char*>(A.c_str()));
    Argv.push_back(nullptr);
    execv(Exe.c_str(), Argv.data());
    _exit(127);
  }
  close(OutPipe[1]);
  close(ErrPipe[1]);
  std::thread Signaller;
  if (Plan) Signaller = SignalWhen(Pid, Plan->LogPath, Plan->Needle, Plan->Signal, Plan->Times);
  Drain(OutPipe[0], ErrPipe[0], R.Stdout, R.Stderr);
  int Status = 0;
  waitpid(Pid, &Status, 0);
  if (Signaller.joinable()) Signaller.join();
  R.ExitCode = WIFEXITED(Status) ? WEXITSTATUS(Status) : 128 + WTERMSIG(Status);
  return R;
}

std::vector<nlohmann::json> ReadEvents(const std::string& Path) {
  std::vector<nlohmann::json> Events;
  std::ifstream In(Path);
  std::string Line;
  while (std::getline(In, Line))
    if (!Line.empty()) Events.push_back(nlohmann::json::parse(Line));
  return Events;
}

bool IsEventOf(const nlohmann::json& E, const char* Event, const std::string& Id) {
  return E.value("event", "") == Event && E.value("id", "") == Id;
}

}  // namespace

std::string ZtPath() { return ZT_EXECUTABLE; }

ZtResult RunZt(const std::string& Dir, const std::string& ProjectYaml,
               const std::vector<std::string>& ExtraArgs, const std::string& Command) {
  if (!ProjectYaml.empty()) std::ofstream(Dir + "/project.yml") << ProjectYaml;
  std::string LogPath = Dir + "/log.jsonl";
  std::remove(LogPath.c_str());
  std::vector<std::string> Args = {Command, "project.yml"};
  if (Command == "run") Args.insert(Args.end(), {"--log-json", LogPath});
  Args.insert(Args.end(), ExtraArgs.begin(), ExtraArgs.end());
  ZtResult R = Spawn(Dir, Args);
  R.Events = ReadEvents(LogPath);
  return R;
}

ZtResult RunZtAndSignal(const std::string& Dir, const std::string& ProjectYaml,
                        const std::string& SignalWhenLogHas, int Signal, int Times) {
  std::ofstream(Dir + "/project.yml") << ProjectYaml;
  SignalPlan Plan{Dir + "/log.jsonl", SignalWhenLogHas, Signal, Times};
  std::remove(Plan.LogPath.c_str());
  ZtResult R = Spawn(Dir, {"run", "project.yml", "--log-json", Plan.LogPath}, &Plan);
  R.Events = ReadEvents(Plan.LogPath);
  return R;
}

ZtResult RunZtArgs(const std::string& Dir, const std::vector<std::string>& Args) { return Spawn(Dir, Args); }

std::vector<std::string> StatusDetails(const ZtResult& R, const std::string& Id) {
  std::vector<std::string> Lines;
  for (const auto& E : R.Events)
    if (IsEventOf(E, "status", Id))
      for (const auto& D : E.value("details", nlohmann::json::array())) Lines.push_back(D.get<std::string>());
  return Lines;
}

nlohmann::json FinalVariables(const ZtResult& R) {
  for (const auto& E : R.Events)
    if (E.value("event", "") == "variables") return E["values"];
  return nullptr;
}

std::vector<std::string> Messages(const ZtResult& R, const std::string& Id) {
  std::vector<std::string> Lines;
  for (const auto& E : R.Events)
    if (IsEventOf(E, "message", Id)) Lines.push_back(E.value("text", ""));
  return Lines;
}

std::vector<std::string> HostLines(const ZtResult& R, const std::string& Id) {
  std::vector<std::string> Lines;
  for (const auto& E : R.Events)
    if (IsEventOf(E, "message", Id) && E.value("host", false)) Lines.push_back(E.value("text", ""));
  return Lines;
}

std::vector<std::string> Passes(const ZtResult& R, const std::string& Id) {
  std::vector<std::string> P;
  for (const auto& E : R.Events)
    if (IsEventOf(E, "iteration", Id)) {
      std::string S = std::to_string(E["index"].get<int>()) + "/" + std::to_string(E["count"].get<int>());
      if (E.contains("value")) S += "=" + E["value"].get<std::string>();
      P.push_back(S);
    }
  return P;
}

nlohmann::json FinalValue(const ZtResult& R, const std::string& Name) {
  const nlohmann::json Values = FinalVariables(R);
  return Values.is_object() ? Values.value(Name, nlohmann::json()) : nlohmann::json();
}

std::string ActionResult(const ZtResult& R, const std::string& Id) {
  for (const auto& E : R.Events)
    if (IsEventOf(E, "action-end", Id)) return E.value("result", "");
  return "";
}

std::vector<std::string> Said(const ZtResult& R, const std::string& Id) {
  std::vector<std::string> Lines;
  for (const auto& E : R.Events) {
    if (IsEventOf(E, "message", Id)) Lines.push_back(E.value("text", ""));
    if (!IsEventOf(E, "status", Id)) continue;
    if (!E.value("text", "").empty()) Lines.push_back(E.value("text", ""));
    for (const auto& D : E.value("details", nlohmann::json::array())) Lines.push_back(D.get<std::string>());
  }
  return Lines;
}

void ExpectCases(const std::vector<ActionCase>& Cases, const std::vector<std::string>& ExtraArgs) {
  for (const ActionCase& C : Cases) {
    SCOPED_TRACE(C.Action);
    TempDir D;
    MakeTree(D.Path(), C.Before);
    const ZtResult R = RunZt(D.Path(), "actions:\n  - {" + C.Action + "}\n", ExtraArgs);
    EXPECT_EQ(Said(R, "1"), C.Log) << R.Stderr;
    EXPECT_EQ(ActionResult(R, "1"), C.Result);
    std::vector<std::string> After = Tree(D.Path());
    std::erase_if(After, [](const std::string& L) {
      return L.starts_with("project.yml=") || L.starts_with("log.jsonl=");
    });
    std::vector<std::string> Expected = C.After;
    std::sort(Expected.begin(), Expected.end());
    EXPECT_EQ(After, Expected);
    if (!C.Variables.empty()) {
      EXPECT_EQ(FinalVariables(R), nlohmann::json::parse(C.Variables));
    }
  }
}

}  // namespace zt::testing
