// Observations that end with their observer, and what else is to happen then.
#include <iostream>

#include <Brindle/BDBlockKeyValueAdditions.h>
#include <Brindle/Platform/Definition.h>
#include <Brindle/Platform/NSNumber.h>

using namespace brindle;

/// A player. One thread at a time.
class Player : public Interface<Player, NSObject> {
 public:
  using Interface::Interface;
  static ClassPair<Player> classPair;

  void setVolume(int volume) const { send<"setVolume:">(*this, volume); }
};

namespace {

struct Fields {
  int volume = 0;
};
constexpr MethodDefinition kMethods[] = {
    method<"volume">([](const Player& self) { return fieldsOf<Fields>(self).volume; }),
    method<"setVolume:">(
        [](const Player& self, int volume) { fieldsOf<Fields>(self).volume = volume; }),
};
constexpr ClassDefinition kDefinition{
    .name = "Player", .methods = kMethods, .fields = fieldsDefinition<Fields>()};

}  // namespace

constinit ClassPair<Player> Player::classPair{kDefinition};

int main() {
  const Player player = Player::new_();
  int shown = 0;
  bool isClosed = false;

  NSObject window = NSObject::new_();
  // The window keeps the block; the block does not keep the window. The answer does nothing, since
  // the observation ends by itself.
  addObserver(
      player, window, "volume"_ns,
      NSKeyValueObservingOptionNew | BDKeyValueObservingOptionRemoveOnDealloc,
      [&shown](const NSDictionary& change) {
        shown = cast<NSNumber>(change[NSKeyValueChangeNewKey])->intValue();
        std::cout << "volume " << shown << '\n';
      },
      [&isClosed] { isClosed = true; });

  player->setVolume(7);
  std::cout << "waiting for the window's end: " << deallocUnobservers(window)->count() << '\n';
  window = nullptr;  // its last owner
  std::cout << (isClosed ? "closed" : "still open") << '\n';
  player->setVolume(11);  // tells nobody
  return shown == 7 && isClosed ? 0 : 1;
}
