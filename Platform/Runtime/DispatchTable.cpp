// The tables that sends are looked up in. See Method.h for how they are read.
#include <Brindle/Platform/Method.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include <Brindle/Platform/MethodChanges.h>

#include "Platform/Runtime/Internal/ClassData.h"

namespace brindle::detail {
namespace {

constinit MethodRecord missingMethod{nullptr, nullptr, nullptr, nullptr, nullptr};

constexpr DispatchPage emptyPageOf(MethodRecord* missing) {
  DispatchPage page{};
  for (MethodRecord*& method : page.methods) method = missing;
  return page;
}
constinit DispatchPage emptyPage = emptyPageOf(&missingMethod);

constexpr EmptyTable emptyTableOf(DispatchPage* page) {
  EmptyTable table{};
  for (DispatchPage*& slot : table.pages) slot = page;
  return table;
}

std::size_t tablePages = 64;
std::uint32_t lastSelectorNumber = 0;

// Readers may still walk what was replaced.
std::vector<void*>& retired() {
  static auto& list = *new std::vector<void*>;
  return list;
}

void storePage(DispatchPage** table, std::size_t page, DispatchPage* value) noexcept {
  __atomic_store_n(&table[page], value, __ATOMIC_RELEASE);
}
void storeMethod(DispatchPage* page, std::size_t index, MethodRecord* method) noexcept {
  __atomic_store_n(&page->methods[index], method, __ATOMIC_RELEASE);
}

void growTablesLocked() {
  if (tablePages * 2 > kMaximalPages) {
    std::fprintf(stderr, "brindle: more than %zu different selectors have methods\n",
                 kMaximalPages * kMethodsPerPage);
    std::abort();
  }
  const std::size_t pages = tablePages * 2;
  for (ClassData* data : allClassesLocked()) {
    auto** table = new DispatchPage*[pages];
    std::copy_n(data->table, tablePages, table);
    std::fill(table + tablePages, table + pages, &emptyPage);
    retired().push_back(data->table);
    ClassRecord* cls = data->record;
    const bool published = cls->table.load(std::memory_order_relaxed) == data->table;
    __atomic_store_n(&data->table, table, __ATOMIC_RELEASE);
    data->ownPages.resize(pages);
    if (published) cls->table.store(table, std::memory_order_release);
  }
  tablePages = pages;
}

std::uint32_t numberLocked(SEL selector) {
  std::uint32_t number = selector->number.load(std::memory_order_relaxed);
  if (number != 0) return number;
  number = lastSelectorNumber + 1;
  if (number >= tablePages * kMethodsPerPage) growTablesLocked();
  lastSelectorNumber = number;
  // Only now does anybody learn the number: every table can hold it.
  selector->number.store(number, std::memory_order_release);
  return number;
}

void replacePageLocked(ClassData* data, std::size_t page, DispatchPage* old, DispatchPage* own) {
  if (data->table[page] != old) return;
  storePage(data->table, page, own);
  for (ClassData* sub : data->subclasses) replacePageLocked(sub, page, old, own);
}

void inheritLocked(ClassData* data, std::size_t page, std::size_t index, MethodRecord* method) {
  for (ClassData* sub : data->subclasses) {
    if (sub->ownPages[page]) {
      if (sub->ownMethods.contains(method->name)) continue;
      storeMethod(sub->table[page], index, method);
    }
    inheritLocked(sub, page, index, method);
  }
}

}  // namespace

constinit const EmptyTable kEmptyTable = emptyTableOf(&emptyPage);

std::size_t tablePagesLocked() { return tablePages; }

DispatchPage** newTableLocked(const ClassData* superclass) {
  auto** table = new DispatchPage*[tablePages];
  if (superclass != nullptr)
    std::copy_n(superclass->table, tablePages, table);
  else
    std::fill_n(table, tablePages, &emptyPage);
  return table;
}

void installMethodLocked(ClassData* data, MethodRecord* method) {
  const std::uint32_t number = numberLocked(method->name);
  const std::size_t page = number / kMethodsPerPage;
  const std::size_t index = number % kMethodsPerPage;
  if (!data->ownPages[page]) {
    DispatchPage* old = data->table[page];
    auto* own = new DispatchPage(*old);
    own->methods[index] = method;
    data->ownPages[page] = true;
    // Subclasses that share the page inherit the method by sharing the new one.
    replacePageLocked(data, page, old, own);
  } else {
    storeMethod(data->table[page], index, method);
  }
  inheritLocked(data, page, index, method);
}

MethodRecord* addMethodLocked(ClassData* data, SEL selector, IMP imp, const char* types,
                              const char* wire, bool first) {
  auto* method = new MethodRecord(selector, imp, types, wire, data->record);
  data->methods.insert(first ? data->methods.begin() : data->methods.end(), method);
  data->ownMethods.emplace(selector, method);
  installMethodLocked(data, method);
  return method;
}

MethodRecord* lookUpMethod(const ClassData* data, SEL selector) noexcept {
  const std::uint32_t number = selector->number.load(std::memory_order_acquire);
  if (number == 0) return nullptr;
  DispatchPage** table = __atomic_load_n(&data->table, __ATOMIC_ACQUIRE);
  DispatchPage* page = __atomic_load_n(&table[number / kMethodsPerPage], __ATOMIC_ACQUIRE);
  MethodRecord* method =
      __atomic_load_n(&page->methods[number % kMethodsPerPage], __ATOMIC_ACQUIRE);
  return method == &missingMethod ? nullptr : method;
}

void storeImplementation(MethodRecord* method, IMP imp, const char* wire) noexcept {
  method->wire.store(nullptr, std::memory_order_release);
  method->implementation.store(imp, std::memory_order_release);
  method->wire.store(wire, std::memory_order_release);
}

}  // namespace brindle::detail
