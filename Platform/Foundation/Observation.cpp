#include <Brindle/Platform/Observation.h>

#include <algorithm>
#include <atomic>
#include <condition_variable>
#include <memory>
#include <mutex>
#include <vector>

#include <Brindle/Platform/Definition.h>
#include <Brindle/Platform/NSException.h>
#include <Brindle/Platform/Runtime.h>
#include <Brindle/Platform/Weak.h>

#include "Platform/Foundation/Internal/Categories.h"
#include "Platform/Foundation/Internal/Marks.h"
#include "Platform/Foundation/Internal/Observations.h"
#include "Platform/Foundation/Internal/ObservedChange.h"

namespace brindle {

using ChangeBlock = Block<void(const NSDictionary&)>;

namespace detail {
namespace {

/// A call of an observation that this thread is inside of.
struct Frame {
  const ObservationState* state;
  const Frame* outer;
};
constinit thread_local const Frame* innermost [[gnu::tls_model("initial-exec")]] = nullptr;

bool isInside(const Frame* frames, const ObservationState* state) noexcept {
  for (; frames != nullptr; frames = frames->outer) {
    if (frames->state == state) return true;
  }
  return false;
}

class FrameScope {
 public:
  explicit FrameScope(const ObservationState* state) noexcept : frame_{state, innermost} {
    innermost = &frame_;
  }
  FrameScope(const FrameScope&) = delete;
  FrameScope& operator=(const FrameScope&) = delete;
  ~FrameScope() { innermost = frame_.outer; }

 private:
  Frame frame_;
};

/// A thread that waits, in a reset, for the calls of an observation to return.
struct Waiter {
  const ObservationState* awaited;
  const Frame* frames;
};

struct Waiters {
  std::mutex lock;
  std::condition_variable changed;
  std::vector<const Waiter*> all;

  /// Whether a call of `awaited` cannot return before one that a thread with these frames runs.
  /// A thread that waits has its frames stand still.
  bool wouldWaitForItselfLocked(const ObservationState* awaited, const Frame* frames) const {
    return std::any_of(all.begin(), all.end(), [&](const Waiter* waiter) {
      return isInside(waiter->frames, awaited) &&
             (isInside(frames, waiter->awaited) ||
              wouldWaitForItselfLocked(waiter->awaited, frames));
    });
  }
};

Waiters& waiters() {
  static auto& all = *new Waiters;
  return all;
}

}  // namespace

/// What a token and what calls its lambda share.
class ObservationState {
 public:
  explicit ObservationState(ValueBlock* values) noexcept : values_(values) {}
  explicit ObservationState(ChangeBlock block) noexcept : block_(std::move(block)) {}
  ObservationState(const ObservationState&) = delete;
  ObservationState& operator=(const ObservationState&) = delete;

  ObservationState* retained() noexcept {
    owners_.fetch_add(1, std::memory_order_relaxed);
    return this;
  }
  void release() noexcept {
    if (owners_.fetch_sub(1, std::memory_order_acq_rel) == 1) delete this;
  }

  /// Registers without a message; false when the object has a way of its own to be observed.
  bool observeDirectly(const id& object, const NSString& keyPath);
  void observeByMessage(const id& object, const NSString& keyPath, NSUInteger options);
  Observation token() noexcept { return Observation(retained()); }

  void run(const CapturedValue& before, const CapturedValue& after, const NSString& keyPath);
  void run(const NSDictionary& change, const NSString& keyPath);
  void end() noexcept;

 private:
  // A call marks the state; where it cannot, it is counted in the bits above these.
  static constexpr std::uint32_t kClosed = 1;     // no call begins
  static constexpr std::uint32_t kSettled = 2;    // and all that have begun are marked or counted
  static constexpr std::uint32_t kFinishing = 4;  // somebody destroys the lambda
  static constexpr std::uint32_t kFinished = 8;   // it is destroyed
  static constexpr std::uint32_t kCall = 16;

  /// A call that has begun, unless the observation has ended. The state outlives it.
  class Call {
   public:
    explicit Call(ObservationState& state) noexcept
        : state_(state), frame_(&state), began_((begin() & kClosed) == 0) {}
    Call(const Call&) = delete;
    Call& operator=(const Call&) = delete;
    ~Call() {
      if (mark_.isSet()) {
        mark_.clear();
        if ((state_.calls_.load() & kClosed) == 0) [[likely]]
          return;
        // Written, though not changed: of two calls that return, the second sees the first one
        // gone.
        if (state_.calls_.fetch_or(0) == (kClosed | kSettled)) state_.finish();
      } else if (state_.calls_.fetch_sub(kCall) == (kCall | kClosed | kSettled)) {
        state_.finish();
      }
    }
    [[nodiscard]] bool began() const noexcept { return began_; }

   private:
    std::uint32_t begin() noexcept {
      if (!mark_.set(state_.markOfCalls())) return state_.calls_.fetch_add(kCall);
      // In the one order of all, as there: an end that does not see this caller has closed the
      // state for what is read next.
      const void* caller = state_.caller_.load();
      if (caller != mark_.thread() && caller != &state_) [[unlikely]]
        state_.noteCaller(mark_.thread());
      return state_.calls_.load();
    }

    ObservationState& state_;
    const FrameScope frame_;
    Mark mark_;
    const bool began_;
  };

  ~ObservationState() = default;
  /// What calls mark: no address that memory begins at. Others mark lists, also some that are gone
  /// and whose memory may be this; whoever waits for such a mark to go would not be told.
  [[nodiscard]] const void* markOfCalls() const noexcept {
    return reinterpret_cast<const char*>(this) + 1;  // NOLINT(*-reinterpret-cast)
  }
  void noteCaller(const MarkingThread* thread) noexcept {
    const void* expected = nullptr;
    if (!caller_.compare_exchange_strong(expected, thread)) caller_.exchange(this);
  }
  /// Whether a call may be marked that this thread does not see. Asked when no more begin.
  [[nodiscard]] bool isCalledElsewhere() const noexcept {
    const void* caller = caller_.load();
    return caller != nullptr && caller != markingThread;
  }
  void unregister() noexcept;
  /// Destroys the lambda, when no call is left. False when that is for somebody else to do.
  bool finish() noexcept;
  void waitForFinish() noexcept;

  std::atomic<std::uint32_t> owners_{1};
  std::atomic<std::uint32_t> calls_{0};
  std::atomic<const void*> caller_{nullptr};  // the thread that marked calls, or this for many
  std::unique_ptr<ValueBlock> values_;
  ChangeBlock block_;
  // One of two ways to be told.
  Registration* registration_ = nullptr;
  id target_;
  Weak<id> object_;
  NSString keyPath_;
};

namespace {

struct ReleaseState {
  void operator()(ObservationState* state) const noexcept { state->release(); }
};
using StateOwner = std::unique_ptr<ObservationState, ReleaseState>;

/// Tells a state of values.
class StateHandler final : public ChangeHandler {
 public:
  StateHandler(StateOwner state, NSString keyPath) noexcept
      : state_(std::move(state)), keyPath_(std::move(keyPath)) {}
  void changed(const id&, const CapturedValue& before, const CapturedValue& after) override {
    state_->run(before, after, keyPath_);
  }

 private:
  StateOwner state_;
  NSString keyPath_;
};

/// Tells a state of dictionaries: the observer of a registration.
class ObservationTarget : public Interface<ObservationTarget, NSObject> {
 public:
  using Interface::Interface;
  static ClassPair<ObservationTarget> classPair;
};

struct TargetFields {
  StateOwner state;
};

constexpr MethodDefinition kTargetMethods[] = {
    method<"observeValueForKeyPath:ofObject:change:context:">(
        [](const ObservationTarget& self, const NSString& keyPath, const id&,
           const NSDictionary& change,
           void*) { fieldsOf<TargetFields>(self).state->run(change, keyPath); }),
};
constexpr ClassDefinition kTarget{.name = "ObservationTarget",
                                  .methods = kTargetMethods,
                                  .fields = fieldsDefinition<TargetFields>()};

constinit ClassPair<ObservationTarget> ObservationTarget::classPair{kTarget};

/// Whether the object registers observers as NSObject does.
bool isPlainlyObserved(const id& object) {
  constexpr auto kSelector = "addObserver:forKeyPath:options:context:";
  static const IMP plain = [] {
    for (const MethodDefinition& method : kNSKeyValueObserving.methods) {
      if (std::string_view(method.name) == kSelector) return method.implementation();
    }
    return IMP(nullptr);
  }();
  const ClassRecord* cls = object.record()->isa.load(std::memory_order_acquire);
  const SEL selector = brindle::selector<"addObserver:forKeyPath:options:context:">();
  return findMethod(cls, selector)->implementation.load(std::memory_order_acquire) == plain;
}

ObservedValue lend(const CapturedValue& value) {
  ObservedValue lent;
  switch (value.type()) {
    case 0:
      return lent;
    case '@':
      break;
    case 'f':
    case 'd':
      lent.kind = ObservedValue::Kind::kReal;
      break;
    case 'Q':
      lent.kind = ObservedValue::Kind::kNatural;
      break;
    default:
      lent.kind = ObservedValue::Kind::kInteger;
      break;
  }
  lent.integer = value.integer();
  lent.real = value.real();
  lent.box = [](const void* source) { return static_cast<const CapturedValue*>(source)->object(); };
  lent.source = &value;
  return lent;
}

}  // namespace

bool ObservationState::observeDirectly(const id& object, const NSString& keyPath) {
  const ObservedPath* path = observedPath(keyPath);
  if (path == nullptr || !isPlainlyObserved(object)) return false;
  auto handler = std::make_unique<StateHandler>(StateOwner(retained()), path->text);
  registration_ = observe(object, nullptr, path, 0, nullptr, std::move(handler));
  return true;
}

void ObservationState::observeByMessage(const id& object, const NSString& keyPath,
                                        NSUInteger options) {
  const ObservationTarget target = ObservationTarget::new_();
  fieldsOf<TargetFields>(target).state = StateOwner(retained());
  target_ = target;
  object_ = object;
  keyPath_ = keyPath->copy();
  try {
    addObserver(object, target, keyPath_, options, this);
  } catch (...) {
    end();
    throw;
  }
}

void ObservationState::run(const CapturedValue& before, const CapturedValue& after,
                           const NSString& keyPath) {
  const Call call(*this);
  if (call.began()) values_->run(lend(before), lend(after), keyPath);
}

void ObservationState::run(const NSDictionary& change, const NSString& keyPath) {
  const Call call(*this);
  if (!call.began()) return;
  if (block_) {
    block_(change);
    return;
  }
  const CapturedValue before(change->objectForKey(NSKeyValueChangeOldKey));
  const CapturedValue after(change->objectForKey(NSKeyValueChangeNewKey));
  values_->run(lend(before), lend(after), keyPath);
}

void ObservationState::end() noexcept {
  calls_.fetch_or(kClosed);
  unregister();
  if (isCalledElsewhere()) settleMarks();
  calls_.fetch_or(kSettled);
  if (!finish()) waitForFinish();
}

void ObservationState::unregister() noexcept {
  if (Registration* registration = std::exchange(registration_, nullptr)) {
    endRegistration(registration);
    releaseRegistration(registration);
    return;
  }
  const id target = std::exchange(target_, nullptr);
  const id object = object_.lock();
  if (!object) return;
  try {
    removeObserver(object, target, keyPath_, this);
  } catch (const RaisedException&) {  // NOLINT(*-empty-catch)
    // It was not registered, or an override removed it: it is closed all the same.
  }
}

bool ObservationState::finish() noexcept {
  std::uint32_t expected = kClosed | kSettled;
  if (isMarked(markOfCalls())) return (calls_.load() & kFinished) != 0;
  if (!calls_.compare_exchange_strong(expected, expected | kFinishing)) {
    return (expected & kFinished) != 0;
  }
  {
    // What the lambda holds may end observations too.
    const FrameScope inside(this);
    values_.reset();
    block_ = nullptr;
  }
  calls_.fetch_or(kFinished);
  { const std::lock_guard guard(waiters().lock); }
  waiters().changed.notify_all();
  return true;
}

void ObservationState::waitForFinish() noexcept {
  const Frame* frames = innermost;
  if (isInside(frames, this)) return;
  std::unique_lock guard(waiters().lock);
  if (waiters().wouldWaitForItselfLocked(this, frames)) return;
  const Waiter waiter{this, frames};
  waiters().all.push_back(&waiter);
  waiters().changed.wait(
      guard, [this] { return (calls_.load(std::memory_order_acquire) & kFinished) != 0; });
  std::erase(waiters().all, &waiter);
}

Observation observeValues(const id& object, const NSString& keyPath, ValueBlock* block) {
  const StateOwner state(new ObservationState(block));
  if (!object) return {};
  if (!state->observeDirectly(object, keyPath)) {
    state->observeByMessage(object, keyPath,
                            NSKeyValueObservingOptionOld | NSKeyValueObservingOptionNew);
  }
  return state->token();
}

}  // namespace detail

void Observation::reset() noexcept {
  detail::ObservationState* state = std::exchange(state_, nullptr);
  if (state == nullptr) return;
  state->end();
  state->release();
}

Observation observe(const id& object, const NSString& keyPath, NSUInteger options,
                    const BlockArg<void(const NSDictionary& change)>& block) {
  if (!object) return {};
  const detail::StateOwner state(new detail::ObservationState(borrow<ChangeBlock>(block.record())));
  state->observeByMessage(object, keyPath, options);
  return state->token();
}

}  // namespace brindle
