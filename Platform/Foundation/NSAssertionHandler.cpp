#include <Brindle/Platform/NSAssertionHandler.h>

#include <Brindle/Platform/Definition.h>
#include <Brindle/Platform/NSException.h>
#include <Brindle/Platform/NSThread.h>
#include <Brindle/Platform/Runtime.h>

namespace brindle {
namespace {

void fail(const NSString& where, const NSString& file, NSInteger line,
          const NSString& description) {
  NSLog("*** Assertion failure in %@, %@:%ld"_ns, where, file, line);
  NSException::raise(NSInternalInconsistencyException, "%@"_ns, description);
}

constexpr MethodDefinition kMethods[] = {
    classMethod<"currentHandler">([](const Class& self) -> id {
      const NSMutableDictionary dictionary = NSThread::currentThread()->threadDictionary();
      id handler = dictionary->objectForKey(NSAssertionHandlerKey);
      if (!handler) {
        handler = send<"new", id>(self);
        dictionary->setObject(handler, NSAssertionHandlerKey);
      }
      return handler;
    }),
    method<"handleFailureInMethod:object:file:lineNumber:description:">(
        [](const NSAssertionHandler&, SEL selector, const id& object, const NSString& file,
           NSInteger line, const NSString& format, const FormatArguments& arguments) {
          const char* sign = object_isClass(object) != NO ? "+" : "-";
          fail(NSString::stringWithFormat("%s[%@ %@]"_ns, sign, NSStringFromClass(classOf(object)),
                                          NSStringFromSelector(selector)),
               file, line, detail::formatString(format, arguments.list));
        }),
    method<"handleFailureInFunction:file:lineNumber:description:">(
        [](const NSAssertionHandler&, const NSString& function, const NSString& file,
           NSInteger line, const NSString& format, const FormatArguments& arguments) {
          fail(function, file, line, detail::formatString(format, arguments.list));
        }),
};

constexpr ClassDefinition kDefinition{.name = "NSAssertionHandler", .methods = kMethods};

}  // namespace

constinit ClassPair<NSAssertionHandler> NSAssertionHandler::classPair{kDefinition};

constinit const NSString NSAssertionHandlerKey = "NSAssertionHandler"_ns;

}  // namespace brindle
