// An application in a folder of its own, with frameworks and plug-ins within each other: what its
// bundles answer, seen from inside. Started without words this program lays the application out,
// puts itself into it and runs that.
#include <dlfcn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <atomic>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>
#include <thread>
#include <vector>

#include <Brindle/BDBundleAdditions.h>
#include <Brindle/Platform/NSString.h>
#include <Brindle/Platform/Runtime.h>

namespace {

using namespace brindle;
namespace fs = std::filesystem;

int failures = 0;

void equal(const std::string& is, const std::string& ought, const char* what) {
  if (is == ought) return;
  ++failures;
  std::fprintf(stderr, "%s: %s instead of %s\n", what, is.c_str(), ought.c_str());
}

// --- Laying out --------------------------------------------------------------------------------

void write(const fs::path& path, const std::string& bytes) {
  fs::create_directories(path.parent_path());
  std::ofstream(path) << bytes;
}

void describe(const fs::path& path, const std::string& identifier, const std::string& name) {
  write(path, "<plist><dict><key>CFBundleIdentifier</key><string>" + identifier +
                  "</string><key>CFBundleExecutable</key><string>" + name +
                  "</string></dict></plist>");
}

// A framework whose executable is a link into its current version; that version's folder.
fs::path makeFramework(const fs::path& path, const std::string& identifier) {
  const fs::path version = path / "Versions/A";
  const std::string name = path.stem();
  describe(version / "Resources/Info.plist", identifier, name);
  write(version / name, "code");
  fs::create_symlink("A", path / "Versions/Current");
  fs::create_symlink("Versions/Current/" + name, path / name);
  fs::create_symlink("Versions/Current/Resources", path / "Resources");
  return version;
}

void layOut(const fs::path& app) {
  const fs::path contents = app / "Contents";
  describe(contents / "Info.plist", "test.app", "BundleSearch");

  const fs::path outer = makeFramework(contents / "Frameworks/Outer.framework", "test.outer");
  makeFramework(outer / "Frameworks/Inner.framework", "test.inner");
  describe(contents / "PlugIns/Plug.plugin/Contents/Info.plist", "test.plug", "Plug");
  const fs::path plug = contents / "PlugIns/Plug.plugin/Contents";
  makeFramework(plug / "Frameworks/Deep.framework", "test.deep");
  describe(plug / "PlugIns/Sub.bundle/Info.plist", "test.sub", "Sub");

  // The same identifier on one level and on a lower one: the last counts.
  describe(contents / "Frameworks/Twice.framework/Info.plist", "test.twice", "Twice");
  describe(plug / "Frameworks/Again.framework/Info.plist", "test.twice", "Again");
  // One folder by two paths: the last path counts.
  fs::create_directory_symlink("../PlugIns/Plug.plugin", contents / "Frameworks/Alias.plugin");

  // What leads back to itself, directly and by a detour; what is no bundle.
  fs::create_directory_symlink("../..", contents / "PlugIns/Whole.app");
  fs::create_directory_symlink("../../..", outer / "Frameworks/Outer.framework");
  fs::create_symlink("Round", contents / "PlugIns/Round");
  write(contents / "PlugIns/file", "no bundle");
  write(contents / "PlugIns/Broken.bundle/Info.plist", "no property list");
}

// Bundles within each other, as far as `count` and `depth` go.
void layOutTree(const fs::path& contents, int& count, int depth) {
  for (int i = 0; i < 5 && depth > 0 && count > 0; ++i) {
    const std::string name = "N" + std::to_string(count--);
    const fs::path bundle = contents / "PlugIns" / (name + ".bundle");
    describe(bundle / "Contents/Info.plist", "test." + name, name);
    layOutTree(bundle / "Contents", count, depth - 1);
  }
}

int run(const fs::path& program, const char* word) {
  const pid_t child = ::fork();
  if (child == 0) {
    ::alarm(60);
    // The copy lies elsewhere: it finds the libraries by their folder.
    Dl_info platform;
    if (::dladdr(reinterpret_cast<void*>(&objc_getMetaClass), &platform) != 0) {  // NOLINT
      ::setenv("LD_LIBRARY_PATH", fs::path(platform.dli_fname).parent_path().c_str(), 1);
    }
    ::execl(program.c_str(), program.c_str(), word, static_cast<char*>(nullptr));
    ::_exit(127);
  }
  int status = 0;
  ::waitpid(child, &status, 0);
  return WIFEXITED(status) ? WEXITSTATUS(status) : 128;
}

int layOutAndRun(const char* word) {
  std::string pattern = fs::temp_directory_path() / "brindle-search-XXXXXX";
  const fs::path root = fs::canonical(::mkdtemp(pattern.data()));
  const fs::path app = root / "Test.app";
  const fs::path program = app / "Contents/Linux/BundleSearch";
  layOut(app);
  int count = 500;
  if (std::string(word) == "tree") layOutTree(app / "Contents", count, 5);
  fs::create_directories(program.parent_path());
  fs::copy_file("/proc/self/exe", program);
  const int status = run(program, word);
  fs::remove_all(root);
  return status;
}

// --- Inside ------------------------------------------------------------------------------------

std::string find(const char* identifier) {
  bool loaded = true;
  const NSBundle bundle = bundleWithIdentifier(NSBundle::class_(), NSString(identifier), &loaded);
  if (!bundle) return loaded ? "nil" : "nil, but not loaded";
  const std::string root(NSBundle::mainBundle()->bundlePath());
  const std::string path(bundle->bundlePath());
  return path.substr(path.find(root) == 0 ? root.size() : 0) + (loaded ? " loaded" : "");
}

// The first call holds the lock of the class that received it: another class's does not matter, and
// while the class's own is held, the search waits.
void searchUnderLock() {
  const Class other = objc_allocateClassPair(NSBundle::class_(), "OtherBundle", 0);
  objc_registerClassPair(other);
  std::atomic<bool> released = false;
  std::thread waiting;
  {
    const Synchronized held(other);
    waiting = std::thread([&released, other] {
      send<"bundleWithIdentifier:loaded:", NSBundle>(other, "test.app"_ns,
                                                     static_cast<bool*>(nullptr));
      equal(released ? "released" : "held", "released", "the lock of the receiver");
    });
    std::this_thread::yield();
    released = true;
  }
  waiting.join();
}

void search() {
  searchUnderLock();
  equal(std::string(NSBundle::mainBundle()->bundleIdentifier()), "test.app", "the main bundle");
  // Nothing in the folders is known by itself.
  equal(NSBundle::bundleWithIdentifier("test.outer"_ns) ? "found" : "nil", "nil", "by itself");

  const std::string plug = "/Contents/PlugIns/Plug.plugin";
  const std::string outer = "/Contents/Frameworks/Outer.framework";
  equal(find("test.app"), " loaded", "the application");
  equal(find("test.outer"), outer, "a framework");
  equal(find("test.inner"), outer + "/Versions/Current/Frameworks/Inner.framework",
        "a framework in the version of another");
  equal(find("test.plug"), plug, "a plug-in by its last path");
  equal(find("test.deep"), plug + "/Contents/Frameworks/Deep.framework", "within a plug-in");
  equal(find("test.sub"), plug + "/Contents/PlugIns/Sub.bundle", "a plug-in of a plug-in");
  equal(find("test.twice"), plug + "/Contents/Frameworks/Again.framework", "the last of two");
  equal(find("test.none"), "nil", "an unknown one");
  equal(find("org.brindle.Brindle").substr(0, 1), "/", "the library's own");

  // The search was made; what comes later is not found.
  const std::string app(NSBundle::mainBundle()->bundlePath());
  describe(app + "/Contents/PlugIns/Late.bundle/Info.plist", "test.late", "Late");
  equal(find("test.late"), "nil", "a late one");
}

// Each file of information is there when it is read, and then gone: nothing is read again.
void searchTree() {
  std::atomic<int> found = 0;
  std::vector<std::thread> threads;
  for (int thread = 0; thread < 4; ++thread) {
    threads.emplace_back([&found] {
      const bool isThere =
          static_cast<bool>(frameworkBundleWithIdentifier(NSBundle::class_(), "test.N500"_ns));
      found += isThere ? 1 : 0;
    });
  }
  for (std::thread& thread : threads) thread.join();
  equal(std::to_string(found), "4", "threads that find");
  const std::string app(NSBundle::mainBundle()->bundlePath());
  for (const auto& entry : fs::recursive_directory_iterator(app)) {
    if (entry.path().filename() == "Info.plist") write(entry.path(), "gone");
  }
  for (int i = 1; i <= 500; ++i) {
    const std::string identifier = "test.N" + std::to_string(i);
    const NSBundle bundle = frameworkBundleWithIdentifier(NSBundle::class_(), NSString(identifier));
    equal(bundle ? std::string(bundle->bundleIdentifier()) : "nil", identifier, "one of many");
  }
}

}  // namespace

int main(int count, char** words) {
  if (count == 1) {
    const int plain = layOutAndRun("search");
    return plain != 0 ? plain : layOutAndRun("tree");
  }
  if (std::string(words[1]) == "tree")
    searchTree();
  else
    search();
  return failures == 0 ? 0 : 1;
}
