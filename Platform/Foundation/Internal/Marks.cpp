// What the threads use at this moment.
#include "Platform/Foundation/Internal/Marks.h"

#include <exception>
#include <new>

#include <linux/membarrier.h>
#include <pthread.h>
#include <sys/syscall.h>
#include <unistd.h>

namespace brindle::detail {
namespace {

// For threads that have not marked yet, and for those that cannot.
constinit MarkingThread beginning{MarkingThread::kAll};
constinit MarkingThread unable{MarkingThread::kAll};

// Never freed: a thread that comes takes over from one that is gone.
constinit std::atomic<MarkingThread*> threads{nullptr};
constinit std::atomic<std::uint32_t> living{0};

bool ask(int command) noexcept { return syscall(SYS_membarrier, command, 0, 0) == 0; }

bool kernelSettles() noexcept {
  static const bool able = ask(MEMBARRIER_CMD_REGISTER_PRIVATE_EXPEDITED);
  return able;
}

/// Null when there is no memory.
MarkingThread* taken() noexcept {
  MarkingThread* thread = threads.load(std::memory_order_acquire);
  for (; thread != nullptr; thread = thread->next) {
    if (!thread->taken.exchange(true, std::memory_order_acq_rel)) return thread;
  }
  thread = new (std::nothrow) MarkingThread(0);
  if (thread == nullptr) return nullptr;
  thread->taken.store(true, std::memory_order_relaxed);
  thread->next = threads.load(std::memory_order_relaxed);
  while (!threads.compare_exchange_weak(thread->next, thread)) {
  }
  return thread;
}

/// Gives a thread's marks back when it ends. What runs in the thread after that marks nothing.
void endThread(void* marks) {
  markingThread = &unable;
  static_cast<MarkingThread*>(marks)->taken.store(false, std::memory_order_release);
  living.fetch_sub(1);
}

/// Its ends come later than those of C++: what a thread's pools hold may mark for the first time
/// when these are past, and would stay among the living.
const pthread_key_t* threadKey() noexcept {
  static pthread_key_t key{};
  static const bool made = pthread_key_create(&key, &endThread) == 0;
  return made ? &key : nullptr;
}

/// Null when it cannot be; this thread marks otherwise.
MarkingThread* begunThread() noexcept {
  const pthread_key_t* key = kernelSettles() ? threadKey() : nullptr;
  if (key == nullptr) return nullptr;
  living.fetch_add(1);
  MarkingThread* thread = taken();
  if (thread != nullptr && pthread_setspecific(*key, thread) == 0) return thread;
  if (thread != nullptr) thread->taken.store(false, std::memory_order_release);
  living.fetch_sub(1);
  return nullptr;
}

}  // namespace

constinit thread_local MarkingThread* markingThread [[gnu::tls_model("initial-exec")]] = &beginning;

MarkingThread* markingThreadWithRoom() noexcept {
  if (markingThread != &beginning) return nullptr;
  MarkingThread* thread = begunThread();
  markingThread = thread != nullptr ? thread : &unable;
  return thread;
}

void settleMarks() noexcept {
  if (onlyThisThreadMarks()) return;
  if (ask(MEMBARRIER_CMD_PRIVATE_EXPEDITED)) return;
  // After a fork, perhaps, it has to be asked for anew.
  if (ask(MEMBARRIER_CMD_REGISTER_PRIVATE_EXPEDITED) && ask(MEMBARRIER_CMD_PRIVATE_EXPEDITED)) {
    return;
  }
  std::terminate();  // marks that were set cannot be trusted any more
}

bool isMarked(const void* what) noexcept {
  for (const MarkingThread* thread = threads.load(); thread != nullptr; thread = thread->next) {
    for (const std::atomic<const void*>& mark : thread->marks) {
      if (mark.load(std::memory_order_acquire) == what) return true;
    }
  }
  return false;
}

bool onlyThisThreadMarks() noexcept {
  const MarkingThread* thread = markingThread;
  // Written, though not changed: a thread that comes after this sees what was taken away before it,
  // and one that came before is counted here.
  return living.fetch_add(0) <= (thread != &beginning && thread != &unable ? 1U : 0U);
}

}  // namespace brindle::detail
