#include <Brindle/Platform/Field.h>

#include <Brindle/Platform/Block.h>
#include <Brindle/Platform/Weak.h>
#include <gtest/gtest.h>

#include "Tests/Platform/Runtime/RuntimeTesting.h"

namespace brindle {
namespace {

TEST(FieldTest, Tour) {
  Field<Mortal> field = Mortal::new_();
  field->setTag(3);
  EXPECT_EQ(field->tag(), 3);
  const Mortal copy = field;
  EXPECT_EQ(copy->retainCount(), 2u);
  EXPECT_TRUE(field == copy);
  EXPECT_TRUE(field.peek() == copy);
  field = nullptr;
  EXPECT_FALSE(field);
  EXPECT_EQ(copy->retainCount(), 1u);
}

// A method that replaces the field it was reached through used to run in freed memory.
TEST(FieldTest, TheObjectLivesUntilItsCallIsDone) {
  static Field<Mortal>* current = nullptr;
  Field<Mortal> field = Mortal::new_();
  current = &field;
  const Class cls = makeClass(Mortal::class_());
  addMethod<"dropMe">(cls, [](const Mortal& self) {
    *current = nullptr;
    return self->tag();
  });
  object_setClass(field.get(), cls);
  field->setTag(8);
  EXPECT_EQ((send<"dropMe", int>(field.get())), 8);
  field = Mortal::new_();
  object_setClass(field.get(), cls);
  field->setTag(9);
  EXPECT_EQ(field->performSelector(selector<"dropMe">()), nullptr);
  EXPECT_FALSE(field);
  EXPECT_EQ(Mortal::living(), 0);
}

TEST(FieldTest, ABlockLivesUntilItsCallIsDone) {
  static Field<Block<int()>>* current = nullptr;
  Field<Block<int()>> field;
  current = &field;
  field = Block<int()>([held = Mortal::new_()] {
    *current = nullptr;
    return held->tag() + 1;
  });
  EXPECT_EQ(field(), 1);
  EXPECT_FALSE(field);
  EXPECT_EQ(Mortal::living(), 0);
}

TEST(FieldTest, TakeGivesUpTheObject) {
  Field<Mortal> field = Mortal::new_();
  const Mortal taken = field.take();
  EXPECT_FALSE(field);
  EXPECT_EQ(taken->retainCount(), 1u);
}

TEST(FieldTest, NilAnswersZero) {
  const Field<Mortal> field;
  EXPECT_TRUE(field == nullptr);
  EXPECT_EQ(field->tag(), 0);
  EXPECT_FALSE(field.get());
}

TEST(FieldTest, TheNewObjectIsInPlaceWhenTheOldOneEnds) {
  static Field<Mortal>* current = nullptr;
  Field<Mortal> field;
  current = &field;
  int seen = 0;
  field = Ender::with([&seen](const Ender&) { seen = (*current)->tag(); });
  const Mortal next = Mortal::new_();
  next->setTag(5);
  field = next;
  EXPECT_EQ(seen, 5);
  field = Ender::raising("old");
  EXPECT_EQ(raised([&] { field = next; }), "old");
  EXPECT_TRUE(field == next);
}

}  // namespace
}  // namespace brindle
