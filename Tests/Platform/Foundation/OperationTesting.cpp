#include "Tests/Platform/Foundation/OperationTesting.h"

#include <mutex>
#include <utility>

namespace brindle {
namespace {

struct Fields {
  std::function<void()> work;
  std::mutex lock;
  std::string announced;
};
Fields& fields(const Job& self) { return fieldsOf<Fields>(self); }

void note(const Job& self, const NSString& key, const char* what) {
  const std::lock_guard guard(fields(self).lock);
  fields(self).announced += std::string(key) + what;
}

constexpr MethodDefinition kMethods[] = {
    method<"main">([](const Job& self) {
      if (fields(self).work) fields(self).work();
    }),
    method<"willChangeValueForKey:">([](const Job& self, const NSString& key) {
      note(self, key, "+ ");
      sendSuper<Job, "willChangeValueForKey:">(self, key);
    }),
    method<"didChangeValueForKey:">([](const Job& self, const NSString& key) {
      note(self, key, "- ");
      sendSuper<Job, "didChangeValueForKey:">(self, key);
    }),
};
constexpr ClassDefinition kDefinition{
    .name = "TestJob", .methods = kMethods, .fields = fieldsDefinition<Fields>()};

}  // namespace

constinit ClassPair<Job> Job::classPair{kDefinition};

Job Job::with(std::function<void()> work) {
  Job job = Job::new_();
  fields(job).work = std::move(work);
  return job;
}

std::string Job::announced() const {
  const std::lock_guard guard(fields(*this).lock);
  return fields(*this).announced;
}

}  // namespace brindle
