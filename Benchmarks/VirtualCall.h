// What a C++ virtual call costs, for benchmarks that count in them.
#pragma once

#include <memory>

#include <benchmark/benchmark.h>

namespace brindle::bench {

class Virtual {
 public:
  Virtual() = default;
  Virtual(const Virtual&) = delete;
  Virtual& operator=(const Virtual&) = delete;
  virtual ~Virtual() = default;
  [[nodiscard]] virtual int number() const = 0;
};
class Keeper : public Virtual {
 public:
  [[nodiscard]] int number() const override { return number_; }

 private:
  int number_ = 7;
};
/// A second class, so that the compiler cannot know which one is called.
class Constant : public Virtual {
 public:
  [[nodiscard]] int number() const override { return 8; }
};

inline void virtualCall(benchmark::State& state) {
  std::unique_ptr<Virtual> receiver;
  if (state.max_iterations > 0)
    receiver = std::make_unique<Keeper>();
  else
    receiver = std::make_unique<Constant>();
  for (auto _ : state) {
    benchmark::DoNotOptimize(receiver);
    benchmark::DoNotOptimize(receiver->number());
  }
}

}  // namespace brindle::bench
