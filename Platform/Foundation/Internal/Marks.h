// What the threads use at this moment, so that whoever takes something away can tell whether
// somebody is still inside, while those who use it pay next to nothing.
//
//   Mark mark;                                   // a reader
//   if (mark.set(list) && stillTheList(list)) read(list);
//
//   makeItAnotherList();                         // whoever takes it away
//   settleMarks();
//   if (!isMarked(list)) delete list;
//
// Readers mark first and look second, the other side the other way round, and neither may overtake
// itself. Such an order costs a reader a locked instruction, as much as a count; here `settleMarks`
// has the kernel interrupt the other threads that ever marked something, and the readers' order is
// one for the compiler only. A thread that is settled after its mark has its mark seen; one that is
// settled before it sees that what it marks is gone.
#pragma once

#include <array>
#include <atomic>
#include <bit>
#include <cstdint>

namespace brindle::detail {

/// The marks of one thread.
struct MarkingThread {
  static constexpr std::uint32_t kAll = 0xFFFF;

  std::uint32_t used;  // a bit for each mark; this thread's own
  std::array<std::atomic<const void*>, 16> marks{};
  std::atomic<bool> taken{false};
  MarkingThread* next = nullptr;

  constexpr explicit MarkingThread(std::uint32_t bits) noexcept : used(bits) {}
};

/// Without room until the thread marks for the first time.
extern constinit thread_local MarkingThread* markingThread [[gnu::tls_model("initial-exec")]];

/// The thread, now with room; null when there is none, for marks nested very deep, where a thread
/// ends, and where the kernel cannot do its part.
MarkingThread* markingThreadWithRoom() noexcept;

/// Something that this thread uses.
class Mark {
 public:
  Mark() noexcept = default;
  Mark(const Mark&) = delete;
  Mark& operator=(const Mark&) = delete;
  ~Mark() { clear(); }

  /// False when it cannot be marked: then it is kept in some other way. Once, or after `clear`.
  [[nodiscard]] bool set(const void* what) noexcept {
    MarkingThread* thread = markingThread;
    if (thread->used == MarkingThread::kAll) [[unlikely]] {
      thread = markingThreadWithRoom();
      if (thread == nullptr) return false;
    }
    place_ = static_cast<std::uint32_t>(std::countr_one(thread->used));
    thread_ = thread;
    thread->used |= 1U << place_;
    thread->marks[place_].store(what, std::memory_order_release);
    std::atomic_signal_fence(std::memory_order_seq_cst);
    return true;
  }

  void clear() noexcept {
    if (thread_ == nullptr) return;
    thread_->marks[place_].store(nullptr, std::memory_order_release);
    std::atomic_signal_fence(std::memory_order_seq_cst);
    thread_->used &= ~(1U << place_);
    thread_ = nullptr;
  }

  [[nodiscard]] bool isSet() const noexcept { return thread_ != nullptr; }
  /// Whose it is, when it is set.
  [[nodiscard]] const MarkingThread* thread() const noexcept { return thread_; }

 private:
  MarkingThread* thread_ = nullptr;
  std::uint32_t place_ = 0;
};

/// Whoever marks from now on sees what this thread has written; older marks are seen here.
void settleMarks() noexcept;
/// Whether a thread, this one too, has marked it. A reader that finds that what it marked is gone
/// has marked, for that moment, whatever lies at the address meanwhile.
bool isMarked(const void* what) noexcept;
/// Whether no other thread ever marked anything, as far as threads live: there is nobody to settle.
bool onlyThisThreadMarks() noexcept;

}  // namespace brindle::detail
