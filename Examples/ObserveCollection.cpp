// Observing a relationship: what happens to it, and a property of every member it has.
#include <iostream>

#include <Brindle/BDBlockKeyValueAdditions.h>
#include <Brindle/Platform/Definition.h>
#include <Brindle/Platform/Field.h>
#include <Brindle/Platform/NSKeyValueCoding.h>
#include <Brindle/Platform/NSNumber.h>
#include <Brindle/Platform/Observation.h>

using namespace brindle;

/// One line of an order. One thread at a time.
class Item : public Interface<Item, NSObject> {
 public:
  using Interface::Interface;
  static ClassPair<Item> classPair;

  void setPrice(int price) const { send<"setPrice:">(*this, price); }
};

/// An order of items. One thread at a time.
class Order : public Interface<Order, NSObject> {
 public:
  using Interface::Interface;
  static ClassPair<Order> classPair;

  NSArray items() const { return send<"items", NSArray>(*this); }
  void setItems(const NSArray& items) const { send<"setItems:">(*this, items); }
};

namespace {

struct ItemFields {
  int price = 0;
};
constexpr MethodDefinition kItemMethods[] = {
    method<"price">([](const Item& self) { return fieldsOf<ItemFields>(self).price; }),
    method<"setPrice:">(
        [](const Item& self, int price) { fieldsOf<ItemFields>(self).price = price; }),
};
constexpr ClassDefinition kItem{
    .name = "Item", .methods = kItemMethods, .fields = fieldsDefinition<ItemFields>()};

struct OrderFields {
  Field<NSMutableArray> items = NSMutableArray::array();
};
OrderFields& fields(const Order& self) { return fieldsOf<OrderFields>(self); }
constexpr MethodDefinition kOrderMethods[] = {
    method<"items">([](const Order& self) -> NSArray { return fields(self).items->copy(); }),
    method<"setItems:">(
        [](const Order& self, const NSArray& items) { fields(self).items = items->mutableCopy(); }),
    // With these two, changes at indexes are told as such.
    method<"insertObject:inItemsAtIndex:">([](const Order& self, const Item& item, NSUInteger i) {
      fields(self).items->insertObject(item, i);
    }),
    method<"removeObjectFromItemsAtIndex:">(
        [](const Order& self, NSUInteger i) { fields(self).items->removeObjectAtIndex(i); }),
};
constexpr ClassDefinition kOrder{
    .name = "Order", .methods = kOrderMethods, .fields = fieldsDefinition<OrderFields>()};

int sumOf(const Order& order) {
  return valueForKeyPath<NSNumber>(order, "items.@sum.price"_ns)->intValue();
}

Item itemOf(int price) {
  const Item item = Item::new_();
  item->setPrice(price);
  return item;
}

}  // namespace

constinit ClassPair<Item> Item::classPair{kItem};
constinit ClassPair<Order> Order::classPair{kOrder};

int main() {
  const Order order = Order::new_();
  const Item tea = itemOf(3);
  order->setItems({tea, itemOf(4)});

  // The price of every item, of those that come later too.
  int sum = sumOf(order);
  const Weak<Order> weak = order;
  const Block<void()> stop = addObserverForCollection(
      order, "items"_ns, "price"_ns, NSKeyValueObservingOptionNew, [&, weak](const NSDictionary&) {
        sum = sumOf(weak.lock());
        std::cout << "a price changed: the sum is " << sum << '\n';
      });
  tea->setPrice(5);

  // What happens to the relationship itself: 1 for another array, 2 for an insertion.
  const Observation changes =
      observe(order, "items"_ns, NSKeyValueObservingOptionNew, [](const NSDictionary& change) {
        std::cout << "items changed: kind " << change[NSKeyValueChangeKindKey] << '\n';
      });
  const Item cake = itemOf(10);
  mutableArrayValueForKey(order, "items"_ns)->addObject(cake);
  cake->setPrice(11);

  order->setItems({cake});
  tea->setPrice(100);  // is of no interest any more
  cake->setPrice(12);
  stop();
  cake->setPrice(99);
  return sum == 12 ? 0 : 1;
}
