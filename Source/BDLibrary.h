// Keeps a program linked to libBrindle. Every header of the library includes this.
//
// Most operations are messages, which name nothing that the linker could see; a linker that drops
// libraries nobody refers to (`--as-needed`) would drop this one, and its classes and categories
// with it. So each source file that includes a header of the library refers to it by one pointer.
#pragma once

#include <Brindle/Platform/Export.h>

namespace brindle {

extern "C" {
/// Stands for the library being there: what links the library can see this name, and only the code
/// of such programs and libraries has its `awake` called (BDAwake.h). Its value is 1 and means
/// nothing.
// NOLINTNEXTLINE(bugprone-reserved-identifier): the name that the loader is asked for
BRINDLE_EXPORT extern const int __kBrindleAwakeLinkCheckingSymbol;
}

namespace {
// NOLINTNEXTLINE: one in each source file is what it is for.
[[gnu::used]] const int* const kBrindleLibraryIsUsed = &__kBrindleAwakeLinkCheckingSymbol;
}  // namespace

}  // namespace brindle
