// What the runtime knows of a class once it is realised, and the lock over it.
//
// One lock guards every change of classes, tables and the register. A function whose name ends in
// `Locked` is called with it. Senders never take it: they read tables that are changed by single
// stores. Nothing here is ever freed; tables and pages that are replaced are kept in a list.
#pragma once

#include <atomic>
#include <deque>
#include <mutex>
#include <string>
#include <thread>
#include <unordered_map>
#include <vector>

#include <Brindle/Platform/Class.h>
#include <Brindle/Platform/Definition.h>
#include <Brindle/Platform/Method.h>
#include <Brindle/Platform/MethodChanges.h>
#include <Brindle/Platform/Protocol.h>
#include <Brindle/Platform/Types.h>

namespace brindle {

struct IvarRecord {
  const char* name;
  const char* types;
  std::ptrdiff_t offset;
};

struct PropertyRecord {
  const char* name;
  const char* attributes;
};

namespace detail {

/// The variables of one class in the chain of an instance's class.
struct FieldsLink {
  std::uint32_t offset;
  void (*construct)(void*);
  void (*destroy)(void*);
};

enum class Readiness { kUntouched, kInitializing, kReady };

struct ClassAssociation;

struct ClassData {
  ClassRecord* record = nullptr;
  DispatchPage** table = nullptr;  // writers' view; published in the record when it is ready
  std::vector<bool> ownPages;
  std::vector<MethodRecord*> methods;  // own, first to last
  std::unordered_map<SEL, MethodRecord*> ownMethods;
  std::vector<IvarRecord*> variables;
  std::vector<PropertyRecord*> properties;
  std::vector<ProtocolRecord*> protocols;
  std::vector<ClassData*> subclasses;
  std::vector<FieldsLink> fields;  // the root's first
  bool destructible = false;
  bool endsQuietly = false;   // see setEndsQuietly
  bool rawVariables = false;  // variables that nothing constructs: the memory is zeroed
  bool registered = false;
  std::uint32_t changes = 0;  // of methods, after the definition was attached
  std::deque<MethodChange> latestChanges;
  std::uint32_t number = 0;
  std::size_t extraBytes = 0;
  std::atomic<ClassAssociation*> associations{nullptr};  // of the class object

  // Of classes; a meta-class asks its class.
  Readiness readiness = Readiness::kUntouched;
  std::thread::id initializer;
};

std::mutex& runtimeLock();

/// The class's data; realises the class (and its superclasses) when that is still to be done.
ClassData* realizedLocked(ClassRecord* cls);
ClassData* realized(ClassRecord* cls);

/// Realises, runs `initialize` (superclasses first, each once) and publishes the tables. Waits
/// while another thread runs it. In the thread that runs it, returns at once.
void makeReady(ClassRecord* cls);

/// The class of a number in the flags of an object; null for number 0.
ClassData* classOfNumber(std::uint32_t number) noexcept;
std::uint32_t newClassNumberLocked(ClassData* data);

/// Puts a class into the register of names; false when the name is taken.
bool registerNameLocked(ClassRecord* cls);
ClassRecord* classNamedLocked(const char* name);
/// All realised classes and meta-classes.
std::vector<ClassData*>& allClassesLocked();

// --- Dispatch tables (DispatchTable.cpp) ---

/// The page count of every table.
std::size_t tablePagesLocked();
/// A table for a new class: its superclass's pages, or empty ones.
DispatchPage** newTableLocked(const ClassData* superclass);
/// Stores the method in the class's table and those of its subclasses that inherit it.
void installMethodLocked(ClassData* data, MethodRecord* method);
/// Adds a record to the class's own methods: at the front, or behind all others.
MethodRecord* addMethodLocked(ClassData* data, SEL selector, IMP imp, const char* types,
                              const char* wire, bool first);
/// The method as writers see it, own or inherited; null when there is none.
MethodRecord* lookUpMethod(const ClassData* data, SEL selector) noexcept;
/// Notes that a category changed methods of the class.
void noteChangeLocked(ClassData* data) noexcept;
/// Notes a change of one method, asked for from `from` unless a ChangeOrigin says otherwise.
void noteChangeLocked(ClassData* data, MethodChange change, const void* from);
/// Stores an implementation with its wire codes, so that a checked send never sees a wrong pair.
void storeImplementation(MethodRecord* method, IMP imp, const char* wire) noexcept;

// --- Wire codes of implementations (Implementation.cpp) ---

/// The wire codes that belong to an implementation; those of `types` when it is not known.
const char* wireOfImplementationLocked(IMP imp, const char* types);
void noteImplementationLocked(IMP imp, const char* wire);

/// A copy of the text that lives for ever; equal texts share one.
const char* internedLocked(const std::string& text);

}  // namespace detail
}  // namespace brindle
