// Copying the methods of one class into another while the program runs.
//
// A method that the target lacks is added. One that it has, itself or by inheritance, is wrapped:
// the mix-in's code takes over the selector, and the target's former code answers to `mixin_` and
// the selector.
//
//   method<"description">([](const Polite& self) -> NSString {     // of the class Polite
//     const NSString former = send<"mixin_description", NSString>(self);
//     return former->stringByAppendingString(", please"_ns);
//   }),
//   class_mixIn(Task::class_(), Polite::class_());
#pragma once

#include <Brindle/BDExceptions.h>
#include <Brindle/BDLibrary.h>
#include <Brindle/Platform/Class.h>

namespace brindle {

extern "C" {
/// Mixes the instance methods that the class `mixIn` itself defines into `target`; for class
/// methods, give both meta-classes. Methods named `mixin_` and more are left out: a mix-in may
/// declare so what it expects to call. Superclasses of both stay as they are.
///
/// Raises BDInvalidArgumentException where the target's method has another type encoding, and then
/// where the target or a superclass has mixed in a method of that name already. What was mixed in
/// up to there stays.
///
/// The code runs on objects of the target: it has their class's fields, not the mix-in's, and
/// `sendSuper` still starts at the superclass of the mix-in. Meant for the start of a program,
/// before other threads use the target.
BRINDLE_EXPORT void class_mixIn(ClassRecord* target, ClassRecord* mixIn);
}

inline void class_mixIn(Class target, Class mixIn) {
  class_mixIn(target.record(), mixIn.record());
  __asm__ volatile("");  // the caller stays on the stack: it is told from there who mixed in
}

}  // namespace brindle
