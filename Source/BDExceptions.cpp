#include <Brindle/BDExceptions.h>

namespace brindle {

constinit const NSString BDGenericException = "BDGenericException"_ns;
constinit const NSString BDRangeException = "BDRangeException"_ns;
constinit const NSString BDNotImplementedException = "BDNotImplementedException"_ns;
constinit const NSString BDSubclassRequiredException = "BDSubclassRequiredException"_ns;
constinit const NSString BDInvalidArgumentException = "BDInvalidArgumentException"_ns;
constinit const NSString BDInternalInconsistencyException = "BDInternalInconsistencyException"_ns;
constinit const NSString BDObjectInaccessibleException = "BDObjectInaccessibleException"_ns;
constinit const NSString BDObjectNotAvailableException = "BDObjectNotAvailableException"_ns;

}  // namespace brindle
