// Benchmarks beside what other libraries take for the same work, as a table of ratios at the end.
//
// Time on a shared machine comes in bad minutes, so everything is measured in rounds: each round
// runs all benchmarks and then every peer, on one CPU, and of each figure the smallest counts. A
// peer is a program of its own that prints lines of a name, a tab and nanoseconds. A peer that was
// not built is left out. A missed bar is printed, and fails nothing: the machine may be to blame.
#pragma once

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <initializer_list>
#include <map>
#include <string>
#include <vector>

#include <benchmark/benchmark.h>
#include <sched.h>
#include <unistd.h>

namespace brindle::bench {

/// Figures by name, in nanoseconds: of each the smallest so far.
class Figures {
 public:
  void note(const std::string& name, double nanoseconds) {
    const auto [place, added] = figures_.emplace(name, nanoseconds);
    if (!added) place->second = std::min(place->second, nanoseconds);
  }
  /// 0 when there is no such figure.
  [[nodiscard]] double operator[](const std::string& name) const {
    const auto found = figures_.find(name);
    return found != figures_.end() ? found->second : 0;
  }

 private:
  std::map<std::string, double> figures_;
};

/// Runs the peer program of that name and notes the figures it prints. Does nothing when it is not
/// there.
inline void runPeer(const std::string& name, Figures& figures) {
  const std::string path = std::string(BRINDLE_PEER_DIR) + "/peer_" + name;
  if (access(path.c_str(), X_OK) != 0) return;
  std::FILE* output = popen(("'" + path + "'").c_str(), "r");
  if (output == nullptr) return;
  char* line = nullptr;
  std::size_t room = 0;
  while (getline(&line, &room, output) > 0) {
    const std::string text = line;
    const std::size_t tab = text.find('\t');
    if (tab == std::string::npos) continue;
    const double nanoseconds = std::strtod(text.c_str() + tab + 1, nullptr);
    if (nanoseconds > 0) figures.note(text.substr(0, tab), nanoseconds);
  }
  std::free(line);  // NOLINT(*-no-malloc): getline's
  pclose(output);
}

/// One line of the table: a figure, what it is measured against, and the ratio it should keep
/// below.
struct Bar {
  const char* figure;
  const char* against;
  double ratio;
};

/// Notes the CPU time of each run; shows the first round on the console as usual.
class RoundReporter : public benchmark::ConsoleReporter {
 public:
  RoundReporter(Figures& figures, bool shown)
      : ConsoleReporter(OO_None), figures_(figures), shown_(shown) {}
  bool ReportContext(const Context& context) override {
    return !shown_ || ConsoleReporter::ReportContext(context);
  }
  void ReportRuns(const std::vector<Run>& runs) override {
    for (const Run& run : runs) {
      if (run.error_occurred || run.run_type != Run::RT_Iteration) continue;
      figures_.note(run.benchmark_name(), run.GetAdjustedCPUTime() * 1e9 /
                                              benchmark::GetTimeUnitMultiplier(run.time_unit));
    }
    if (shown_) ConsoleReporter::ReportRuns(runs);
  }

 private:
  Figures& figures_;
  bool shown_;
};

inline void printBars(const Figures& figures, std::initializer_list<Bar> bars) {
  std::printf("\n%-34s %-34s %9s %9s %6s %6s\n", "figure", "against", "ns", "ns", "ratio", "bar");
  for (const Bar& bar : bars) {
    const double own = figures[bar.figure];
    const double other = figures[bar.against];
    if (own == 0 || other == 0) continue;
    std::printf("%-34s %-34s %9.2f %9.2f %6.2f %6.2f%s\n", bar.figure, bar.against, own, other,
                own / other, bar.ratio, own / other <= bar.ratio ? "" : "  missed");
  }
}

/// Everything that a benchmark's `main` does. Give the number of rounds with --rounds=N.
inline int runWithPeers(int argc, char** argv, std::initializer_list<const char*> peers,
                        std::initializer_list<Bar> bars) {
  int rounds = 5;
  std::vector<char*> rest;
  for (int i = 0; i < argc; ++i) {
    if (std::sscanf(argv[i], "--rounds=%d", &rounds) != 1) rest.push_back(argv[i]);
  }
  int count = static_cast<int>(rest.size());
  rest.push_back(nullptr);
  benchmark::Initialize(&count, rest.data());
  if (benchmark::ReportUnrecognizedArguments(count, rest.data())) return 1;

  // The peers inherit it.
  cpu_set_t cpu;
  CPU_ZERO(&cpu);
  CPU_SET(sched_getcpu(), &cpu);
  sched_setaffinity(0, sizeof cpu, &cpu);

  Figures figures;
  for (int round = 0; round < rounds; ++round) {
    RoundReporter reporter(figures, round == 0);
    benchmark::RunSpecifiedBenchmarks(&reporter);
    for (const char* peer : peers) runPeer(peer, figures);
  }
  printBars(figures, bars);
  benchmark::Shutdown();
  return 0;
}

}  // namespace brindle::bench
