#include "platform/access/cage.h"

#include <fcntl.h>
#include <seccomp.h>
#include <sys/mman.h>
#include <sys/resource.h>
#include <unistd.h>

#include <climits>
#include <initializer_list>

namespace vordane::access {
namespace {

bool limit(int resource, rlim_t most) {
  const rlimit both{most, most};
  return setrlimit(static_cast<__rlimit_resource>(resource), &both) == 0;
}

bool closeInherited(int pipe) {
  const int nowhere = open("/dev/null", O_RDWR | O_CLOEXEC);
  if (nowhere < 0) return false;
  for (int file = 0; file < pipeEnd; ++file)
    if (dup2(nowhere, file) < 0) return false;
  if (pipe != pipeEnd && dup2(pipe, pipeEnd) < 0) return false;
  return close_range(pipeEnd + 1, UINT_MAX, 0) == 0;
}

using Filter = scmp_filter_ctx;

bool allow(Filter filter, std::initializer_list<int> calls) {
  for (const int call : calls)
    if (seccomp_rule_add(filter, SCMP_ACT_ALLOW, call, 0) != 0) return false;
  return true;
}

// Memory that can't be run.
bool allowMemory(Filter filter, int call) {
  const scmp_arg_cmp access{2, SCMP_CMP_MASKED_EQ, PROT_EXEC, 0};
  return seccomp_rule_add(filter, SCMP_ACT_ALLOW, call, 1, access) == 0;
}

bool allowWriting(Filter filter, int file) {
  const scmp_arg_cmp written{0, SCMP_CMP_EQ, static_cast<scmp_datum_t>(file), 0};
  return seccomp_rule_add(filter, SCMP_ACT_ALLOW, SCMP_SYS(write), 1, written) == 0;
}

bool fill(Filter filter) {
  const bool filled =
      allow(filter, {SCMP_SYS(read), SCMP_SYS(pread64), SCMP_SYS(lseek), SCMP_SYS(fstat),
                     SCMP_SYS(newfstatat), SCMP_SYS(close), SCMP_SYS(brk), SCMP_SYS(munmap), SCMP_SYS(mremap),
                     SCMP_SYS(madvise), SCMP_SYS(futex), SCMP_SYS(clock_gettime), SCMP_SYS(getrandom),
                     SCMP_SYS(exit), SCMP_SYS(exit_group), SCMP_SYS(rt_sigreturn)}) &&
      allowMemory(filter, SCMP_SYS(mmap)) && allowMemory(filter, SCMP_SYS(mprotect)) &&
      allowWriting(filter, STDERR_FILENO) && allowWriting(filter, pipeEnd);
  return filled;
}

}  // namespace

bool limitChild(int pipe, const Limits& limits) {
  constexpr rlim_t files = pipeEnd + 3;  // the file, and what looks at it before
  return closeInherited(pipe) && limit(RLIMIT_FSIZE, 0) && limit(RLIMIT_CORE, 0) &&
         limit(RLIMIT_CPU, static_cast<rlim_t>(limits.processorSeconds)) &&
         (sanitized || (limit(RLIMIT_NOFILE, files) && limit(RLIMIT_AS, limits.memory)));
}

bool lockChild() {
  if (sanitized) return true;
  const Filter filter = seccomp_init(SCMP_ACT_KILL_PROCESS);
  if (filter == nullptr) return false;
  const bool locked = fill(filter) && seccomp_load(filter) == 0;
  seccomp_release(filter);
  return locked;
}

}  // namespace vordane::access
