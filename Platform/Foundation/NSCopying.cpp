#include <Brindle/Platform/NSCopying.h>

namespace brindle {

constinit ProtocolRecord kNSCopying{"NSCopying"};
constinit ProtocolRecord kNSMutableCopying{"NSMutableCopying"};

}  // namespace brindle
