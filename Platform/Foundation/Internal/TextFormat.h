// Fills a format with arguments as POSIX printf does, in the plain locale, with "%@" for objects.
// Widths count UTF-16 units. Every argument carries its type: one that a conversion cannot take is
// converted where that makes sense and prints nothing where it does not; an argument that is not
// there prints nothing. Integers are cut to the conversion's size as in C ("%d" to 32 bits), and
// "%n" stores nothing.
#pragma once

#include <Brindle/Platform/FormatArgument.h>

#include <span>

#include "Platform/Foundation/Internal/TextBuilder.h"

namespace brindle::internal {

/// Appends the text of an object that is not nil.
using DescribeObject = void (*)(TextBuilder& target, const void* object);

/// Appends the filled format. Nil and null strings print as "(null)".
void formatText(TextBuilder& target, TextView format, std::span<const FormatArgument> arguments,
                DescribeObject describe);

}  // namespace brindle::internal
