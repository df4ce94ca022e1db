#include <gtest/gtest.h>

#include <Brindle/Platform.h>

#include <cstddef>

namespace bank {
using namespace brindle;

class Account : public Interface<Account, NSObject> {
 public:
  using Interface::Interface;
  static ClassPair<Account> classPair;

  NSString name() const { return send<"name", NSString>(*this); }
  void setName(const NSString& name) const { send<"setName:">(*this, name); }
  NSInteger balance() const { return send<"balance", NSInteger>(*this); }
  void setBalance(NSInteger balance) const { send<"setBalance:">(*this, balance); }
};

// [example: account]
namespace {

struct Fields {
  Field<NSString> name;
  NSInteger balance = 0;
};
Fields& fields(const Account& self) { return fieldsOf<Fields>(self); }

bool equal(const id& a, const id& b) { return a == b || a->isEqual(b); }  // also when both are nil

constexpr MethodDefinition kMethods[] = {
    method<"name">([](const Account& self) -> NSString { return fields(self).name; }),
    method<"setName:">(
        [](const Account& self, const NSString& name) { fields(self).name = name->copy(); }),
    method<"balance">([](const Account& self) { return fields(self).balance; }),
    method<"setBalance:">(
        [](const Account& self, NSInteger balance) { fields(self).balance = balance; }),

    // A subclass that has more to copy overrides this, begins with `sendSuper`, and copies its own.
    method<"copyWithZone:">([](const Account& self, NSZone*) -> id {
      const Account copy = ClassOf<Account>(classOf(self))->new_();
      copy->setName(self->name());
      copy->setBalance(self->balance());
      return copy;
    }),
    method<"isEqual:">([](const Account& self, const id& other) {
      const Account account = dynCast<Account>(other);
      return account && equal(self->name(), account->name()) &&
             self->balance() == account->balance();
    }),
    method<"hash">([](const Account& self) -> NSUInteger {
      return self->name()->hash() + static_cast<NSUInteger>(self->balance());
    }),

    method<"encodeWithCoder:">([](const Account& self, const NSCoder& coder) {
      coder->encodeObject(self->name(), "name"_ns);
      coder->encodeInteger(self->balance(), "balance"_ns);
    }),
    method<"initWithCoder:">([](const Account& self, const NSCoder& coder) -> id {
      const Account account = sendSuper<Account, "init", Account>(self);
      if (!account) return nullptr;
      fields(account).name = dynCast<NSString>(coder->decodeObjectForKey("name"_ns));
      fields(account).balance = coder->decodeIntegerForKey("balance"_ns);
      return account;
    }),
};
constexpr ProtocolRecord* kProtocols[] = {&kNSCopying, &kNSCoding};
constexpr ClassDefinition kDefinition{.name = "Account",
                                      .methods = kMethods,
                                      .protocols = kProtocols,
                                      .fields = fieldsDefinition<Fields>()};

}  // namespace

constinit ClassPair<Account> Account::classPair{kDefinition};
// [end]

namespace {

TEST(AccountGuide, CopiesEqualsAndComesBack) {
  // [example: account-use]
  registerClass(Account::classPair);  // once: archives find classes by name

  const Account account = Account::new_();
  account->setName("Ann"_ns);
  account->setBalance(120);
  const Account copy = account->copy();
  const bool same = copy->isEqual(account);  // yes, and another object

  const NSData data = NSKeyedArchiver::archivedDataWithRootObject(NSArray{account, account});
  const auto back = cast<NSArray>(NSKeyedUnarchiver::unarchiveObjectWithData(data));
  const bool one = back[0] == back[1];  // yes: one object is one object again
  // [end]
  EXPECT_TRUE(same);
  EXPECT_FALSE(copy == account);
  EXPECT_TRUE(one);
  EXPECT_TRUE(back[0]->isEqual(account));
  EXPECT_EQ(copy->hash(), account->hash());
  EXPECT_TRUE(Account::new_()->isEqual(Account::new_()));
}

TEST(CollectionsGuide, HoldObjects) {
  // [example: collections]
  const NSArray colours = {"red"_ns, "green"_ns};
  for (const id& colour : colours) std::cout << colour << '\n';  // members are lent, as `id`
  const auto first = cast<NSString>(colours[0]);                 // taken out: narrowed

  const NSDictionary ages = {{"Ann"_ns, NSNumber(31)}, {"Bo"_ns, NSNumber(27)}};
  const int age = cast<NSNumber>(ages["Ann"_ns])->intValue();  // 31; a missing key gives nil

  NSMutableArray queue = NSMutableArray::array();  // not `= {}`, which is nil
  queue->addObject(NSNumber(1));
  // [end]
  EXPECT_EQ(std::string(first), "red");
  EXPECT_EQ(age, 31);
  EXPECT_EQ(queue->count(), 1U);
}

}  // namespace
}  // namespace bank
