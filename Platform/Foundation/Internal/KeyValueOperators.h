// The operators of key paths in collections: "@sum.price".
#pragma once

#include <optional>
#include <vector>

#include <Brindle/Platform/NSString.h>

namespace brindle::detail {

/// What an operation answers: objects make an array or a set, as the collection is.
struct OperationResult {
  id value;
  std::optional<std::vector<id>> objects;
};

/// Applies the operator at the start of the path (with its "@") to the members of a collection.
/// Nothing when it is none, or begins with no "@". Raises NSInvalidArgumentException when it needs
/// a path and there is none, or for nil where that cannot be.
std::optional<OperationResult> operationResult(const id& collection, const std::vector<id>& members,
                                               SEL selector, const NSString& path);

}  // namespace brindle::detail
