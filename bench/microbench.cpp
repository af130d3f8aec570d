// Micro-benchmarks of the launcher's work outside the virtual machine:
//
//  - class-path assembly over install trees whose three scanned directories
//    hold 10, 1,000 and 10,000 archives and as many other files each, next
//    to a bare readdir loop over the same directories and to the least work
//    that yields the same list (readdir, appending each archive to a string);
//  - one whole command run (factory, setup, option list, key hand-over,
//    main call, shutdown) against a virtual machine whose every call returns
//    at once, with the trace off and with ZN_DTRACE=0,31, alone and with as
//    many parked threads as the virtual machine has when the privileges are
//    given up (setuid() has to reach each of them).
//
//   zn_microbench --tree=DIR [--empty-command-ms=MS] [benchmark flags]
//
// DIR is the install tree of the end-to-end runs; MS the empty command's wall
// time there, to which the own-work figures are compared.
#include <benchmark/benchmark.h>
#include <dirent.h>
#include <malloc.h>
#include <sys/resource.h>
#include <unistd.h>

#include <condition_variable>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <map>
#include <mutex>
#include <string>
#include <string_view>
#include <thread>
#include <vector>

#include "ZnCLI.h"
#include "ZnDebugInit.h"

namespace fs = std::filesystem;

namespace {

std::string benchTree;
double emptyCommandMs = 0;

// ---------------------------------------------------------------------------
// A virtual machine that does nothing. JNI_CreateJavaVM (below) is defined in
// this program, so the launcher's calls land here instead of in libjvm.

int token;
template <typename T>
T handle() {
  return reinterpret_cast<T>(&token);
}

JNINativeInterface_ envFunctions() {
  JNINativeInterface_ f{};
  f.FindClass = [](JNIEnv*, const char*) { return handle<jclass>(); };
  f.GetMethodID = [](JNIEnv*, jclass, const char*, const char*) { return handle<jmethodID>(); };
  f.GetStaticMethodID = f.GetMethodID;
  f.NewObjectArray = [](JNIEnv*, jsize, jclass, jobject) { return handle<jobjectArray>(); };
  f.SetObjectArrayElement = [](JNIEnv*, jobjectArray, jsize, jobject) {};
  f.NewByteArray = [](JNIEnv*, jsize) { return handle<jbyteArray>(); };
  f.SetByteArrayRegion = [](JNIEnv*, jbyteArray, jsize, jsize, const jbyte*) {};
  // The C++ forms of the variadic calls go through their va_list forms.
  f.NewObjectV = [](JNIEnv*, jclass, jmethodID, va_list) { return handle<jobject>(); };
  f.CallStaticVoidMethodV = [](JNIEnv*, jclass, jmethodID, va_list) {};
  f.ExceptionOccurred = [](JNIEnv*) -> jthrowable { return nullptr; };
  f.ExceptionCheck = [](JNIEnv*) -> jboolean { return JNI_FALSE; };
  f.DeleteLocalRef = [](JNIEnv*, jobject) {};
  return f;
}

JNIInvokeInterface_ vmFunctions() {
  JNIInvokeInterface_ f{};
  f.DestroyJavaVM = [](JavaVM*) -> jint { return JNI_OK; };
  return f;
}

const JNINativeInterface_ ENV_FUNCTIONS = envFunctions();
const JNIInvokeInterface_ VM_FUNCTIONS = vmFunctions();
JNIEnv stubEnv{&ENV_FUNCTIONS};
JavaVM stubVM{&VM_FUNCTIONS};

}  // namespace

extern "C" JNIEXPORT jint JNICALL JNI_CreateJavaVM(JavaVM** vm, void** env, void*) {
  *vm = &stubVM;
  *env = &stubEnv;
  return JNI_OK;
}

namespace {

// ---------------------------------------------------------------------------
// Class-path assembly

const char* const SCANNED_DIRS[] = {"/opt/zn/patch/", "/opt/zn/lib/", "/opt/zn/j2re/lib/"};
fs::path treesRoot;

// An install tree whose scanned directories each hold n archives and n
// other files, made on first use.
std::string classPathTree(int64_t n) {
  if (treesRoot.empty()) {
    std::string pattern = (fs::temp_directory_path() / "zn-classpath-XXXXXX").string();
    treesRoot = mkdtemp(pattern.data());
  }
  const fs::path base = treesRoot / std::to_string(n);
  if (!fs::exists(base)) {
    for (const char* dir : SCANNED_DIRS) {
      const fs::path path = base.string() + dir;
      fs::create_directories(path);
      for (int64_t i = 0; i < n; ++i) {
        const std::string stem = "zn-component-" + std::to_string(100000 + i);
        std::ofstream(path / (stem + ".jar")).put('\0');
        std::ofstream(path / (stem + ".properties")).put('\0');
      }
    }
  }
  return base.string();
}

long minorFaults() {
  rusage usage{};
  getrusage(RUSAGE_SELF, &usage);
  return usage.ru_minflt;
}

// Time per directory entry, and page faults per call counted from `faults0`.
void countEntries(benchmark::State& state, long faults0) {
  const int64_t entries = 3 * (2 * state.range(0) + 2);  // with "." and ".."
  state.SetComplexityN(state.range(0));
  state.counters["faults"] = benchmark::Counter(static_cast<double>(minorFaults() - faults0),
                                                benchmark::Counter::kAvgIterations);
  state.counters["per_entry"] = benchmark::Counter(
      static_cast<double>(entries),
      benchmark::Counter::kIsIterationInvariantRate | benchmark::Counter::kInvert);
}

std::vector<std::string> scannedDirs(int64_t n) {
  std::vector<std::string> dirs;
  for (const char* dir : SCANNED_DIRS) dirs.push_back(classPathTree(n) + dir);
  return dirs;
}

void BM_BareReaddir(benchmark::State& state) {
  const std::vector<std::string> dirs = scannedDirs(state.range(0));
  const long faults0 = minorFaults();
  for (auto _ : state) {
    for (const std::string& dir : dirs) {
      DIR* stream = opendir(dir.c_str());
      while (const dirent* entry = readdir(stream)) benchmark::DoNotOptimize(entry->d_name[0]);
      closedir(stream);
    }
  }
  countEntries(state, faults0);
}

// The least work that yields the same list: readdir, and each archive
// appended to one string.
void BM_ReaddirJoin(benchmark::State& state) {
  const std::vector<std::string> dirs = scannedDirs(state.range(0));
  const long faults0 = minorFaults();
  for (auto _ : state) {
    std::string list;
    for (const std::string& dir : dirs) {
      DIR* stream = opendir(dir.c_str());
      while (const dirent* entry = readdir(stream)) {
        const std::string_view name = entry->d_name;
        if (name.size() < 4 || name.substr(name.size() - 4) != ".jar") continue;
        if (!list.empty()) list += ':';
        list += dir;
        list += name;
      }
      closedir(stream);
    }
    benchmark::DoNotOptimize(list);
  }
  countEntries(state, faults0);
}

void BM_GetFilesFromDir(benchmark::State& state) {
  const std::string base = classPathTree(state.range(0));
  ZnCMD command("znexec", "");
  const long faults0 = minorFaults();
  for (auto _ : state) {
    for (const char* dir : SCANNED_DIRS)
      benchmark::DoNotOptimize(command.getFilesFromDir(base + dir, "jar"));
  }
  countEntries(state, faults0);
}

void BM_ReadClassPath(benchmark::State& state) {
  setenv("ZN_BASE_DIR", classPathTree(state.range(0)).c_str(), 1);
  ZnCMD command("znexec", "");
  const long faults0 = minorFaults();
  for (auto _ : state) benchmark::DoNotOptimize(command.readClassPath());
  countEntries(state, faults0);
}

BENCHMARK(BM_BareReaddir)->Arg(10)->Arg(1000)->Arg(10000)->Complexity();
BENCHMARK(BM_ReaddirJoin)->Arg(10)->Arg(1000)->Arg(10000)->Complexity();
BENCHMARK(BM_GetFilesFromDir)->Arg(10)->Arg(1000)->Arg(10000)->Complexity();
BENCHMARK(BM_ReadClassPath)->Arg(10)->Arg(1000)->Arg(10000)->Complexity();

// ---------------------------------------------------------------------------
// The launcher's own work for one command

// The command class of znexec, giving back the option texts that a real
// process keeps until it ends.
class BenchCommand : public ZnCLI {
 public:
  using ZnCLI::ZnCLI;
  ~BenchCommand() override {
    for (int i = 0; i < myOptionCount; ++i) delete[] myOptions[i].optionString;
  }
  int optionCount() const { return myOptionCount; }
};

// Threads parked as the virtual machine's are when the launcher gives the
// privileges up: setuid() has to reach every thread of the process.
class ParkedThreads {
 public:
  explicit ParkedThreads(int64_t count) {
    for (int64_t i = 0; i < count; ++i) {
      myThreads.emplace_back([this] {
        std::unique_lock<std::mutex> lock(myMutex);
        myWake.wait(lock, [this] { return myDone; });
      });
    }
  }
  ~ParkedThreads() {
    {
      std::lock_guard<std::mutex> lock(myMutex);
      myDone = true;
    }
    myWake.notify_all();
    for (std::thread& thread : myThreads) thread.join();
  }

 private:
  std::mutex myMutex;
  std::condition_variable myWake;
  bool myDone = false;
  std::vector<std::thread> myThreads;
};

void BM_LauncherOwnWork(benchmark::State& state) {
  const bool trace = state.range(0) != 0;
  if (benchTree.empty()) return state.SkipWithError("needs --tree=DIR");
  if (trace && access(DEBUG_FILE_PATH, W_OK) != 0) {
    return state.SkipWithError("needs a writable /var/opt/zn/logs/");
  }
  ParkedThreads vmThreads(state.range(1));
  setenv("ZN_BASE_DIR", benchTree.c_str(), 1);
  const std::string program = benchTree + "/bin/znexec";
  char arg0[] = "znexec";
  char* argv[] = {arg0, nullptr};
  int options = 0;
  for (auto _ : state) {
    if (trace) setenv(TRACE_ENV_VAR, "0,31", 1);  // the level list is cut up as it is read
    const std::string name = ZnCMD::getName(program);
    delete ZnCLI::createCLI(name);
    BenchCommand command(name, "com/brennic/zn/cli/ZnCommandDispatcher");
    command.run(1, argv, environ);
    options = command.optionCount();
    // What the end of the process does: the trace file closes.
    debug_terminate();
    debug_stop();
    debug_reset_indent();
  }
  if (trace) {
    unsetenv(TRACE_ENV_VAR);
    unlink((std::string(DEBUG_FILE_PATH) + "znexec.dbg." + std::to_string(getpid())).c_str());
  }
  state.counters["options"] = options;
}

// 14: the threads the virtual machine (-Xint, G1, 2 cores) has started by the
// time the launcher gives the privileges up.
BENCHMARK(BM_LauncherOwnWork)
    ->ArgNames({"trace", "vm_threads"})
    ->Args({0, 0})
    ->Args({0, 14})
    ->Args({1, 14})
    ->Unit(benchmark::kMicrosecond);

// ---------------------------------------------------------------------------
// Report

// The console report, keeping each benchmark's median (or only) real and
// CPU times per iteration, in nanoseconds.
class Collector : public benchmark::ConsoleReporter {
 public:
  Collector() : ConsoleReporter(OO_Tabular) {}
  std::map<std::string, double> nanos, cpuNanos;

  void ReportRuns(const std::vector<Run>& runs) override {
    for (const Run& run : runs) {
      if (run.error_occurred) continue;
      if (run.run_type == Run::RT_Iteration || run.aggregate_name == "median") {
        const double scale = 1e9 / benchmark::GetTimeUnitMultiplier(run.time_unit);
        nanos[run.run_name.str()] = run.GetAdjustedRealTime() * scale;
        cpuNanos[run.run_name.str()] = run.GetAdjustedCPUTime() * scale;
      }
    }
    ConsoleReporter::ReportRuns(runs);
  }
};

void printSummary(std::map<std::string, double>& nanos, std::map<std::string, double>& cpu) {
  printf(
      "\nClass-path assembly, CPU ns per directory entry (3 directories of N archives + N "
      "others)\n");
  printf("  %6s  %12s  %12s  %15s  %13s  %18s\n", "N", "bare readdir", "readdir+join",
         "getFilesFromDir", "readClassPath", "readClassPath/bare");
  for (int n : {10, 1000, 10000}) {
    if (!nanos.count("BM_ReadClassPath/" + std::to_string(n))) continue;
    const double entries = 3.0 * (2 * n + 2);
    const std::string arg = "/" + std::to_string(n);
    const double bare = cpu["BM_BareReaddir" + arg], join = cpu["BM_ReaddirJoin" + arg];
    const double files = cpu["BM_GetFilesFromDir" + arg], full = cpu["BM_ReadClassPath" + arg];
    printf("  %6d  %12.1f  %12.1f  %15.1f  %13.1f  %18.2f\n", n, bare / entries, join / entries,
           files / entries, full / entries, full / bare);
  }
  printf("\nLauncher's own work per command, wall time (all but the virtual machine's calls)\n");
  for (auto [label, key] :
       {std::pair{"trace off, no other thread", "BM_LauncherOwnWork/trace:0/vm_threads:0"},
        std::pair{"trace off, 14 VM threads", "BM_LauncherOwnWork/trace:0/vm_threads:14"},
        std::pair{"ZN_DTRACE=0,31, 14 VM threads", "BM_LauncherOwnWork/trace:1/vm_threads:14"}}) {
    if (!nanos.count(key)) continue;
    printf("  %-30s %9.1f us", label, nanos[key] / 1e3);
    if (emptyCommandMs > 0) {
      printf("  = %.3f %% of the empty command's wall time (%.2f ms)",
             nanos[key] / 1e4 / emptyCommandMs, emptyCommandMs);
    }
    printf("\n");
  }
}

}  // namespace

int main(int argc, char** argv) {
  // Blocks of 128 KiB and more come fresh from the kernel at every call, as
  // in a launch (a new process), instead of whatever earlier calls left to
  // reuse: a fixed threshold turns the allocator's adaptive one off.
  mallopt(M_MMAP_THRESHOLD, 128 * 1024);
  benchmark::Initialize(&argc, argv);
  for (int i = 1; i < argc; ++i) {
    const std::string arg = argv[i];
    if (arg.rfind("--tree=", 0) == 0) {
      benchTree = arg.substr(7);
    } else if (arg.rfind("--empty-command-ms=", 0) == 0) {
      emptyCommandMs = atof(arg.c_str() + 19);
    } else {
      fprintf(stderr, "zn_microbench: unknown argument %s\n", argv[i]);
      return 2;
    }
  }
  Collector reporter;
  benchmark::RunSpecifiedBenchmarks(&reporter);
  printSummary(reporter.nanos, reporter.cpuNanos);
  if (!treesRoot.empty()) fs::remove_all(treesRoot);
  benchmark::Shutdown();
  return 0;
}
