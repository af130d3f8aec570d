// End-to-end runs of one empty command, side by side: the launcher, the
// in-process baseline given the launcher's own option texts (as its echo
// shows them), and the java command given the same options and class. Each
// round runs the three one after the other, alone, in an order that rotates
// from round to round; the figures are medians over the rounds, and each ratio
// is the median of the per-round ratios.
//
//   zn_bench_ab TREE COMMAND CLASS BASELINE JAVA [ROUNDS [WARMUP [CANDIDATE]]]
//
// TREE is an install tree (ZN_BASE_DIR) with TREE/bin/COMMAND linked to the
// launcher; CLASS is the command's main class in JNI form. CANDIDATE, a link
// named COMMAND to another build of the launcher, joins the rotation: a
// change measured side by side with the launcher it would replace.
#include <fcntl.h>
#include <spawn.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <string>
#include <vector>

namespace {

using Args = std::vector<std::string>;

struct Sample {
  double wallMs, cpuMs, peakMiB;
};

struct Variant {
  const char* name;
  Args argv;
  std::vector<Sample> samples;
};

[[noreturn]] void die(const std::string& what) {
  fprintf(stderr, "zn_bench_ab: %s\n", what.c_str());
  exit(1);
}

std::vector<char*> pointers(Args& strings) {
  std::vector<char*> result;
  for (std::string& s : strings) result.push_back(s.data());
  result.push_back(nullptr);
  return result;
}

// Starts `args` with exactly `env`; standard output goes to `outFd`, or to
// /dev/null when it is negative.
pid_t spawn(Args args, Args env, int outFd) {
  posix_spawn_file_actions_t actions;
  posix_spawn_file_actions_init(&actions);
  if (outFd >= 0) {
    posix_spawn_file_actions_adddup2(&actions, outFd, STDOUT_FILENO);
  } else {
    posix_spawn_file_actions_addopen(&actions, STDOUT_FILENO, "/dev/null", O_WRONLY, 0);
  }
  std::vector<char*> argv = pointers(args);
  std::vector<char*> envp = pointers(env);
  pid_t pid = 0;
  int error = posix_spawn(&pid, argv[0], &actions, nullptr, argv.data(), envp.data());
  posix_spawn_file_actions_destroy(&actions);
  if (error != 0) die("cannot start " + args[0]);
  return pid;
}

void awaitSuccess(pid_t pid, const std::string& what, rusage* usage) {
  int status = 0;
  if (wait4(pid, &status, 0, usage) != pid || !WIFEXITED(status) || WEXITSTATUS(status) != 0) {
    die(what + " failed (status " + std::to_string(status) + ")");
  }
}

double millis(const timeval& t) {
  return static_cast<double>(t.tv_sec) * 1e3 + static_cast<double>(t.tv_usec) / 1e3;
}

Sample measure(const Variant& variant, const Args& env) {
  timespec start{}, end{};
  rusage usage{};
  clock_gettime(CLOCK_MONOTONIC, &start);
  awaitSuccess(spawn(variant.argv, env, -1), variant.name, &usage);
  clock_gettime(CLOCK_MONOTONIC, &end);
  return {static_cast<double>(end.tv_sec - start.tv_sec) * 1e3 +
              static_cast<double>(end.tv_nsec - start.tv_nsec) / 1e6,
          millis(usage.ru_utime) + millis(usage.ru_stime),
          static_cast<double>(usage.ru_maxrss) / 1024.0};
}

// The option texts the launcher hands to the virtual machine, from its echo.
Args launcherOptions(const Args& launcher, Args env) {
  constexpr char ECHO[] = "addJVMOption(): ";
  env.push_back("ZN_SHOW_JVM_OPTS=1");
  int fds[2];
  if (pipe(fds) != 0) die("pipe");
  pid_t pid = spawn(launcher, env, fds[1]);
  close(fds[1]);
  std::string out;
  char buffer[4096];
  for (ssize_t n; (n = read(fds[0], buffer, sizeof buffer)) > 0;) out.append(buffer, n);
  close(fds[0]);
  rusage usage{};
  awaitSuccess(pid, "the option echo", &usage);
  Args options;
  for (size_t at = 0, end; (end = out.find('\n', at)) != std::string::npos; at = end + 1) {
    std::string line = out.substr(at, end - at);
    if (line.rfind(ECHO, 0) == 0) options.push_back(line.substr(sizeof ECHO - 1));
  }
  return options;
}

double median(std::vector<double> values) {
  std::sort(values.begin(), values.end());
  size_t n = values.size();
  return n % 2 ? values[n / 2] : (values[n / 2 - 1] + values[n / 2]) / 2;
}

template <typename F>
double medianOf(const Variant& v, F field) {
  std::vector<double> values;
  for (const Sample& s : v.samples) values.push_back(field(s));
  return median(values);
}

// The per-round values of combine(a, b), sorted.
template <typename F>
std::vector<double> paired(const Variant& a, const Variant& b, F combine) {
  std::vector<double> values;
  for (size_t i = 0; i < a.samples.size(); ++i)
    values.push_back(combine(a.samples[i], b.samples[i]));
  std::sort(values.begin(), values.end());
  return values;
}

void printRatio(const Variant& a, const Variant& b) {
  auto wall = paired(a, b, [](auto x, auto y) { return x.wallMs / y.wallMs; });
  printf("  %-9s/%-8s %8.3f  %8.3f  %8.3f   %+.2f MiB   wall quartiles %.3f-%.3f\n", a.name, b.name,
         median(wall), median(paired(a, b, [](auto x, auto y) { return x.cpuMs / y.cpuMs; })),
         median(paired(a, b, [](auto x, auto y) { return x.peakMiB / y.peakMiB; })),
         median(paired(a, b, [](auto x, auto y) { return x.peakMiB - y.peakMiB; })),
         wall[wall.size() / 4], wall[wall.size() * 3 / 4]);
}

}  // namespace

int main(int argc, char** argv) {
  if (argc < 6) {
    die("usage: zn_bench_ab TREE COMMAND CLASS BASELINE JAVA [ROUNDS [WARMUP [CANDIDATE]]]");
  }
  const std::string tree = argv[1], command = argv[2], mainClass = argv[3];
  const long rounds = argc > 6 ? strtol(argv[6], nullptr, 10) : 30;
  const long warmup = argc > 7 ? strtol(argv[7], nullptr, 10) : 3;
  Variant candidate{"candidate", {argc > 8 ? argv[8] : ""}, {}};
  const Args env = {"PATH=/usr/bin:/bin", "LANG=C.UTF-8", "ZN_BASE_DIR=" + tree};

  Variant launcher{"launcher", {tree + "/bin/" + command}, {}};
  const Args options = launcherOptions(launcher.argv, env);
  Variant baseline{"baseline", {argv[4], mainClass, command}, {}};
  baseline.argv.insert(baseline.argv.end(), options.begin(), options.end());
  // The java command takes an empty argument for the class name, so the
  // empty options (which the virtual machine ignores) are left out; and it
  // ignores the options it does not know only when told so.
  Variant java{"java", {argv[5], "-XX:+IgnoreUnrecognizedVMOptions"}, {}};
  int empty = 0;
  for (const std::string& option : options) {
    if (option.empty()) {
      ++empty;
    } else {
      java.argv.push_back(option);
    }
  }
  std::string dotted = mainClass;
  std::replace(dotted.begin(), dotted.end(), '/', '.');
  java.argv.insert(java.argv.end(), {dotted, command});

  printf(
      "Options (the launcher's echo; the baseline gets the same texts, java all but the %d "
      "empty ones, after -XX:+IgnoreUnrecognizedVMOptions):\n",
      empty);
  for (const std::string& option : options) printf("  [%s]\n", option.c_str());

  std::vector<Variant*> variants = {&launcher, &baseline, &java};
  if (!candidate.argv[0].empty()) variants.push_back(&candidate);
  const int n = static_cast<int>(variants.size());
  for (long round = -warmup; round < rounds; ++round) {
    for (long i = 0; i < n; ++i) {
      Variant& v = *variants[(round + warmup + i) % n];
      Sample sample = measure(v, env);
      if (round >= 0) v.samples.push_back(sample);
    }
  }

  printf("\nEnd to end: %s, an empty main; %ld rounds after %ld warm-up rounds, order rotating\n",
         command.c_str(), rounds, warmup);
  printf("  %-18s %8s  %8s  %8s\n", "median", "wall ms", "CPU ms", "peak MiB");
  for (const Variant* v : variants) {
    printf("  %-18s %8.2f  %8.2f  %8.2f\n", v->name,
           medianOf(*v, [](const Sample& s) { return s.wallMs; }),
           medianOf(*v, [](const Sample& s) { return s.cpuMs; }),
           medianOf(*v, [](const Sample& s) { return s.peakMiB; }));
  }
  printf("  %-18s %8s  %8s  %8s   %s\n", "ratio (per round)", "wall", "CPU", "peak",
         "peak difference");
  printRatio(launcher, baseline);
  printRatio(launcher, java);
  if (n > 3) {
    printRatio(candidate, baseline);
    printRatio(candidate, launcher);
  }
  printf("empty-command wall ms: %.3f\n",
         medianOf(launcher, [](const Sample& s) { return s.wallMs; }));
  return 0;
}
