// The runtime's plain functions: reading and changing classes while the program runs.
//
// Names and meanings are the platform's; they live in this namespace with C++ linkage, so that
// another object runtime in the same process keeps its own. All are safe on any thread, each by
// itself; a sequence of them is not one step. A null class, selector or name gives null, NO or
// nothing. Lists named `copy` are answered as vectors. Strings, methods, classes and selectors live
// for ever.
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include <Brindle/Platform/Class.h>
#include <Brindle/Platform/Method.h>
#include <Brindle/Platform/Object.h>
#include <Brindle/Platform/Protocol.h>
#include <Brindle/Platform/Selector.h>
#include <Brindle/Platform/Types.h>

namespace brindle {

// --- Classes by name -----------------------------------------------------------------------------

/// The registered class of that name, or nil.
BRINDLE_PLATFORM_EXPORT Class objc_getClass(const char* name);
/// The same.
BRINDLE_PLATFORM_EXPORT Class objc_lookUpClass(const char* name);
/// The meta-class of the registered class of that name, or nil.
BRINDLE_PLATFORM_EXPORT Class objc_getMetaClass(const char* name);
/// Every registered class, in no particular order.
BRINDLE_PLATFORM_EXPORT std::vector<Class> objc_copyClassList();

// --- Making classes ------------------------------------------------------------------------------

/// A new class and meta-class, not yet registered: methods and variables are added, then it is
/// registered. `extraBytes` follow the class record and are zero. A nil superclass makes a root
/// class. Nil when a class of that name is registered, or the name is null.
BRINDLE_PLATFORM_EXPORT Class objc_allocateClassPair(Class superclass, const char* name,
                                                     std::size_t extraBytes);
/// Makes the class findable by name. A name taken meanwhile keeps its first owner.
BRINDLE_PLATFORM_EXPORT void objc_registerClassPair(Class cls);
/// Adds a zeroed variable of `size` bytes, aligned to 2 to the power of `alignment`, to a class
/// that is not registered yet. NO when it is, when it has subclasses or the name already, or for a
/// meta-class.
BRINDLE_PLATFORM_EXPORT BOOL class_addIvar(Class cls, const char* name, std::size_t size,
                                           std::uint8_t alignment, const char* types);

// --- A class's description -----------------------------------------------------------------------

/// "nil" for nil.
BRINDLE_PLATFORM_EXPORT const char* class_getName(Class cls);
BRINDLE_PLATFORM_EXPORT Class class_getSuperclass(Class cls);
BRINDLE_PLATFORM_EXPORT BOOL class_isMetaClass(Class cls);
/// Bytes of an instance, its head included.
BRINDLE_PLATFORM_EXPORT std::size_t class_getInstanceSize(Class cls);
/// Zeroed bytes behind a class made with `extraBytes`; null for other classes.
BRINDLE_PLATFORM_EXPORT void* objc_getIndexedIvars(Class cls);

// --- Methods -------------------------------------------------------------------------------------

/// The class's own methods, never inherited ones: added ones and categories' first, then those of
/// its definition in order.
BRINDLE_PLATFORM_EXPORT std::vector<Method> class_copyMethodList(Class cls);
/// The method that instances run, own or inherited; null when there is none.
BRINDLE_PLATFORM_EXPORT Method class_getInstanceMethod(Class cls, SEL selector);
/// The method that the class itself runs.
BRINDLE_PLATFORM_EXPORT Method class_getClassMethod(Class cls, SEL selector);
/// The code that instances run; the forwarding entry when there is none. Null for nil.
BRINDLE_PLATFORM_EXPORT IMP class_getMethodImplementation(Class cls, SEL selector);
BRINDLE_PLATFORM_EXPORT BOOL class_respondsToSelector(Class cls, SEL selector);
/// Adds a method, overriding an inherited one. NO when the class itself has the selector already.
/// A null implementation is added too, and counts as missing when a message is sent.
BRINDLE_PLATFORM_EXPORT BOOL class_addMethod(Class cls, SEL selector, IMP implementation,
                                             const char* types);
/// Adds the method or replaces the class's own implementation. Answers the one replaced, else null.
BRINDLE_PLATFORM_EXPORT IMP class_replaceMethod(Class cls, SEL selector, IMP implementation,
                                                const char* types);

BRINDLE_PLATFORM_EXPORT SEL method_getName(Method method);
BRINDLE_PLATFORM_EXPORT IMP method_getImplementation(Method method);
BRINDLE_PLATFORM_EXPORT const char* method_getTypeEncoding(Method method);
/// Receiver and selector included.
BRINDLE_PLATFORM_EXPORT unsigned method_getNumberOfArguments(Method method);
/// Sets the implementation for this class and every class that inherits it; answers the previous.
BRINDLE_PLATFORM_EXPORT IMP method_setImplementation(Method method, IMP implementation);
/// Exchanges two implementations in one step.
BRINDLE_PLATFORM_EXPORT void method_exchangeImplementations(Method a, Method b);

/// An entry that, called as an implementation of these types, forwards its message.
BRINDLE_PLATFORM_EXPORT IMP forwardingImplementation(const char* types);

// --- Variables and properties --------------------------------------------------------------------

BRINDLE_PLATFORM_EXPORT std::vector<Ivar> class_copyIvarList(Class cls);
/// Own or inherited.
BRINDLE_PLATFORM_EXPORT Ivar class_getInstanceVariable(Class cls, const char* name);
BRINDLE_PLATFORM_EXPORT const char* ivar_getName(Ivar ivar);
BRINDLE_PLATFORM_EXPORT const char* ivar_getTypeEncoding(Ivar ivar);
/// Bytes from the object's start.
BRINDLE_PLATFORM_EXPORT std::ptrdiff_t ivar_getOffset(Ivar ivar);

BRINDLE_PLATFORM_EXPORT std::vector<objc_property_t> class_copyPropertyList(Class cls);
/// Own or inherited.
BRINDLE_PLATFORM_EXPORT objc_property_t class_getProperty(Class cls, const char* name);
/// Adds a property's description; NO when the class itself has one of that name.
BRINDLE_PLATFORM_EXPORT BOOL class_addProperty(Class cls, const char* name, const char* attributes);
BRINDLE_PLATFORM_EXPORT const char* property_getName(objc_property_t property);
BRINDLE_PLATFORM_EXPORT const char* property_getAttributes(objc_property_t property);

// --- Objects -------------------------------------------------------------------------------------

/// A new instance with `extraBytes` zeroed bytes behind it; not initialised. Nil for nil.
BRINDLE_PLATFORM_EXPORT id class_createInstance(Class cls, std::size_t extraBytes);
/// The object's class as it is now; a class's meta-class. Nil for nil.
BRINDLE_PLATFORM_EXPORT Class object_getClass(const id& object);
/// Changes the object's class and answers the previous one. Its variables stay those of the class
/// it was born with, and are destroyed as such.
BRINDLE_PLATFORM_EXPORT Class object_setClass(const id& object, Class cls);
/// Whether the object is a class.
BRINDLE_PLATFORM_EXPORT BOOL object_isClass(const id& object);
/// Zeroed bytes behind an object made with `extraBytes`, in a class without later variables.
BRINDLE_PLATFORM_EXPORT void* object_getIndexedIvars(const id& object);

// --- Associated objects --------------------------------------------------------------------------

/// How an associated value is held. The atomic policies differ from the others in nothing here:
/// every read answers an owned reference.
enum objc_AssociationPolicy : std::uintptr_t {
  OBJC_ASSOCIATION_ASSIGN = 0,  // not owned; the value must outlive every read
  OBJC_ASSOCIATION_RETAIN_NONATOMIC = 1,
  OBJC_ASSOCIATION_COPY_NONATOMIC = 3,
  OBJC_ASSOCIATION_RETAIN = 01401,
  OBJC_ASSOCIATION_COPY = 01403,
};

/// Associates a value with the object under a key (an address); nil removes it. A nil object has no
/// effect. Values go when their object goes.
BRINDLE_PLATFORM_EXPORT void objc_setAssociatedObject(const id& object, const void* key,
                                                      const id& value,
                                                      objc_AssociationPolicy policy);
/// The value, or nil.
BRINDLE_PLATFORM_EXPORT id objc_getAssociatedObject(const id& object, const void* key);
/// Removes all of the object's values.
BRINDLE_PLATFORM_EXPORT void objc_removeAssociatedObjects(const id& object);

// --- Monitors ------------------------------------------------------------------------------------

inline constexpr int OBJC_SYNC_SUCCESS = 0;
inline constexpr int OBJC_SYNC_NOT_OWNING_THREAD_ERROR = -1;

/// Enters the object's own recursive monitor, waiting while another thread is inside. The object
/// must stay alive until it is left. Nil does nothing. Answers OBJC_SYNC_SUCCESS.
BRINDLE_PLATFORM_EXPORT int objc_sync_enter(const id& object);
/// Leaves it. OBJC_SYNC_NOT_OWNING_THREAD_ERROR when this thread is not inside.
BRINDLE_PLATFORM_EXPORT int objc_sync_exit(const id& object);

/// Inside the object's monitor from here to the end of the scope.
class Synchronized {
 public:
  explicit Synchronized(id object) : object_(static_cast<id&&>(object)) {
    objc_sync_enter(object_);
  }
  ~Synchronized() { objc_sync_exit(object_); }
  Synchronized(const Synchronized&) = delete;
  Synchronized& operator=(const Synchronized&) = delete;

 private:
  id object_;
};

}  // namespace brindle
