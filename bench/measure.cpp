// Runs a command and reports its wall-clock time and peak memory, for hosts
// without GNU time:
//
//   ta51_measure COMMAND [ARGUMENT...]
//
// Prints "wall=<seconds> maxrss_kb=<kilobytes> status=<exit status>" on
// standard error once the command has ended; its own output is untouched.

#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <cstdio>

int main(int argc, char** argv) {
  if (argc < 2) {
    std::fprintf(stderr, "usage: ta51_measure COMMAND [ARGUMENT...]\n");
    return 2;
  }
  auto start = std::chrono::steady_clock::now();
  pid_t child = fork();
  if (child == 0) {
    execvp(argv[1], argv + 1);
    std::perror(argv[1]);
    _exit(127);
  }
  int wait = 0;
  if (child < 0 || waitpid(child, &wait, 0) != child) return 2;
  std::chrono::duration<double> wall = std::chrono::steady_clock::now() - start;
  rusage usage{};
  getrusage(RUSAGE_CHILDREN, &usage);
  int status = WIFEXITED(wait) ? WEXITSTATUS(wait) : 128 + WTERMSIG(wait);
  std::fprintf(stderr, "wall=%.6f maxrss_kb=%ld status=%d\n", wall.count(), usage.ru_maxrss,
               status);
  return 0;
}
