// An operation whose work is a block, and that runs another block when it is cancelled.
//
//   BDBlockOperation load = BDBlockOperation::blockOperationWithBlock(
//       [request] { request->read(); }, [request] { request->stop(); });
//   queue->addOperation(load);
//   load->cancel();
//
// The cancel block runs each time `cancel` is sent, on the thread that sends it, whatever the
// state: the operation is marked cancelled by then. It may run while the work runs on another
// thread; what both use is theirs to guard. An operation that is cancelled before it starts never
// runs its work.
#pragma once

#include <Brindle/BDLibrary.h>
#include <Brindle/Platform/NSOperation.h>

namespace brindle {

/// States, queues and dependencies are NSOperation's. Any thread may read and set the blocks.
class BDBlockOperation : public Interface<BDBlockOperation, NSOperation> {
 public:
  using Interface::Interface;
  BRINDLE_EXPORT static ClassPair<BDBlockOperation> classPair;

  template <class Self>
  class ClassSide : public NSOperation::ClassSide<Self> {
   public:
    Self blockOperationWithBlock(const BlockArg<void()>& block) const {
      return send<"blockOperationWithBlock:", Self>(*this, block);
    }
    Self blockOperationWithBlock(const BlockArg<void()>& block,
                                 const BlockArg<void()>& cancel) const {
      return send<"blockOperationWithBlock:cancel:", Self>(*this, block, cancel);
    }
  };

  /// An operation that runs a copy of the block, which is required: running nil raises
  /// NSInvalidArgumentException.
  static BDBlockOperation blockOperationWithBlock(const BlockArg<void()>& block) {
    return class_()->blockOperationWithBlock(block);
  }
  /// The same with a block for `cancel`; nil for none.
  static BDBlockOperation blockOperationWithBlock(const BlockArg<void()>& block,
                                                  const BlockArg<void()>& cancel) {
    return class_()->blockOperationWithBlock(block, cancel);
  }
  BDBlockOperation initWithBlock(const BlockArg<void()>& block) const {
    return send<"initWithBlock:", BDBlockOperation>(*this, block);
  }
  BDBlockOperation initWithBlock(const BlockArg<void()>& block,
                                 const BlockArg<void()>& cancel) const {
    return send<"initWithBlock:cancel:", BDBlockOperation>(*this, block, cancel);
  }

  /// The work. Set blocks are copied.
  Block<void()> executionBlock() const { return send<"executionBlock", Block<void()>>(*this); }
  void setExecutionBlock(const BlockArg<void()>& block) const {
    send<"setExecutionBlock:">(*this, block);
  }
  /// What `cancel` runs; nil for nothing.
  Block<void()> cancelBlock() const { return send<"cancelBlock", Block<void()>>(*this); }
  void setCancelBlock(const BlockArg<void()>& block) const {
    send<"setCancelBlock:">(*this, block);
  }
};

}  // namespace brindle
