// Error objects for what went wrong with files.
#pragma once

#include <Brindle/Platform/FoundationErrors.h>

namespace brindle::detail {

enum class FileAccess { read, write };

/// Puts an error for that `errno` into the slot, when there is one. Answers false.
bool fail(NSError* error, FileAccess access, int code, const NSString& path);

/// The same for a path that no file has: nil, empty, or with a zero character.
bool failForName(NSError* error, FileAccess access, const NSString& path);

/// The same for a code of the platform's with no `errno` behind it.
bool failWithCode(NSError* error, NSInteger code, const NSString& path);

}  // namespace brindle::detail
