// Attaching a library: its classes, its categories, and their `load` operations.
#include <Brindle/Platform/Definition.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>

#include <Brindle/Platform/Runtime.h>
#include <Brindle/Platform/Send.h>

#include "Platform/Runtime/Internal/ClassData.h"

namespace brindle {
namespace {

using detail::ClassData;

void attachMethodsLocked(ClassData* data, const CategoryDefinition& category, bool ofClass) {
  // Backwards, each to the front: the category's methods come first, in their own order.
  for (std::size_t i = category.methods.size(); i-- > 0;) {
    const MethodDefinition& m = category.methods[i];
    if (m.ofClass != ofClass) continue;
    const IMP imp = m.implementation();
    const SEL selector = sel_registerName(m.name);
    detail::noteImplementationLocked(imp, m.wire);
    auto known = data->ownMethods.find(selector);
    if (known == data->ownMethods.end()) {
      detail::addMethodLocked(data, selector, imp, m.types, m.wire, true);
      continue;
    }
    // The handle stays the same, so whoever holds it sees the new implementation.
    MethodRecord* method = known->second;
    std::erase(data->methods, method);
    data->methods.insert(data->methods.begin(), method);
    method->types.store(m.types);
    method->signature.store(nullptr);
    detail::storeImplementation(method, imp, m.wire);
  }
}

void attachLocked(const CategoryDefinition& category) {
  if (category.version != kDefinitionVersion) {
    std::fprintf(stderr,
                 "brindle: category %s was built for layout %u of definitions, this is %u\n",
                 category.name, category.version, kDefinitionVersion);
    std::abort();
  }
  ClassData* data = detail::realizedLocked(category.cls);
  ClassData* meta = detail::realizedLocked(category.cls->other);
  attachMethodsLocked(data, category, false);
  attachMethodsLocked(meta, category, true);
  detail::noteChangeLocked(data);
  detail::noteChangeLocked(meta);
  for (const PropertyDefinition& p : category.properties) {
    data->properties.push_back(new PropertyRecord{p.name, p.attributes});
  }
  data->protocols.insert(data->protocols.end(), category.protocols.begin(),
                         category.protocols.end());
}

void runLoad(std::span<const MethodDefinition> methods, ClassRecord* cls) {
  for (const MethodDefinition& m : methods) {
    if (m.ofClass && std::string_view(m.name) == "load") {
      detail::callImplementation<void>(m.implementation(), cls, sel_registerName("load"));
    }
  }
}

/// Superclasses first; `done` counts from the front of the list.
void runClassLoads(std::span<ClassRecord* const> classes) {
  std::vector<ClassRecord*> done;
  auto run = [&](auto&& again, ClassRecord* cls) -> void {
    if (cls == nullptr || std::find(classes.begin(), classes.end(), cls) == classes.end() ||
        std::find(done.begin(), done.end(), cls) != done.end()) {
      return;
    }
    again(again, cls->superclass);
    done.push_back(cls);
    if (cls->definition != nullptr) runLoad(cls->definition->methods, cls);
  };
  for (ClassRecord* cls : classes) run(run, cls);
}

}  // namespace

void attachImage(const ImageDefinition& image) {
  {
    const std::lock_guard guard(detail::runtimeLock());
    for (ClassRecord* cls : image.classes) detail::realizedLocked(cls);
    for (const CategoryDefinition* category : image.categories) attachLocked(*category);
  }
  runClassLoads(image.classes);
  for (const CategoryDefinition* category : image.categories) {
    runLoad(category->methods, category->cls);
  }
}

}  // namespace brindle
