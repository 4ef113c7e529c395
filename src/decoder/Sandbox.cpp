#include "Sandbox.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <csignal>
#include <initializer_list>
#include <memory>

#include <fcntl.h>
#include <sched.h>
#include <sys/mman.h>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <sys/syscall.h>
#include <unistd.h>

#if HAZELMARK_HAS_SECCOMP
#include <seccomp.h>
#endif

namespace hazelmark::glass {

namespace {

// A sanitizer takes terabytes of addresses, and looks at memory and at its own process by calls that no decoder makes.
#if defined(__SANITIZE_ADDRESS__)
constexpr bool kIsSanitized = true;
#else
constexpr bool kIsSanitized = false;
#endif

/// The hard limit stays, so that the other program can widen this one.
void setSoftLimit(__rlimit_resource resource, rlim_t value)
{
    rlimit limit = {};
    if (::getrlimit(resource, &limit) != 0)
        return;
    limit.rlim_cur = std::min(value, limit.rlim_max);
    ::setrlimit(resource, &limit);
}

void setLimits()
{
    constexpr rlim_t kHeaderMemory = 512u * 1024 * 1024;
    constexpr rlim_t kHeaderSeconds = 7;
    constexpr rlimit kNone = {0, 0};
    ::setrlimit(RLIMIT_CORE, &kNone);
    ::setrlimit(RLIMIT_FSIZE, &kNone);
    if (!kIsSanitized)
        setSoftLimit(RLIMIT_DATA, kHeaderMemory);
    setSoftLimit(RLIMIT_CPU, kHeaderSeconds);
}

#if HAZELMARK_HAS_SECCOMP

struct ReleaseFilter
{
    void operator()(void *filter) const { seccomp_release(filter); }
};

using Filter = std::unique_ptr<void, ReleaseFilter>;

/// Adds rules as long as all goes well. A call that this processor does not have needs none.
class Rules
{
public:
    explicit Rules(scmp_filter_ctx filter)
        : m_filter(filter)
    {
    }
    Rules &add(uint32_t action, std::initializer_list<int> calls)
    {
        for (const int call : calls)
            addWhere(action, call, {});
        return *this;
    }
    Rules &addWhere(uint32_t action, int call, std::initializer_list<scmp_arg_cmp> conditions)
    {
        const int result =
            seccomp_rule_add_array(m_filter, action, call, unsigned(conditions.size()), std::data(conditions));
        m_isGood = m_isGood && (result == 0 || result == -EDOM);
        return *this;
    }
    bool isGood() const { return m_isGood; }

private:
    scmp_filter_ctx m_filter;
    bool m_isGood = true;
};

scmp_arg_cmp argumentIs(unsigned index, uint64_t value)
{
    return {index, SCMP_CMP_EQ, value, 0};
}

scmp_arg_cmp argumentHas(unsigned index, uint64_t mask, uint64_t bits)
{
    return {index, SCMP_CMP_MASKED_EQ, mask, bits};
}

/// Memory, threads (Qt's each make an event descriptor), clocks, and reading what is open.
void allowComputing(Rules &rules)
{
    rules.add(SCMP_ACT_ALLOW, {SCMP_SYS(brk),
                               SCMP_SYS(munmap),
                               SCMP_SYS(mremap),
                               SCMP_SYS(madvise),
                               SCMP_SYS(futex),
                               SCMP_SYS(set_robust_list),
                               SCMP_SYS(rseq),
                               SCMP_SYS(sched_yield),
                               SCMP_SYS(exit),
                               SCMP_SYS(exit_group),
                               SCMP_SYS(sched_getaffinity),
                               SCMP_SYS(getpid),
                               SCMP_SYS(gettid),
                               SCMP_SYS(clock_gettime),
                               SCMP_SYS(clock_getres),
                               SCMP_SYS(gettimeofday),
                               SCMP_SYS(nanosleep),
                               SCMP_SYS(clock_nanosleep),
                               SCMP_SYS(time),
                               SCMP_SYS(rt_sigreturn),
                               SCMP_SYS(rt_sigprocmask),
                               SCMP_SYS(rt_sigaction),
                               SCMP_SYS(sigaltstack),
                               SCMP_SYS(restart_syscall),
                               SCMP_SYS(getrandom),
                               SCMP_SYS(read),
                               SCMP_SYS(pread64),
                               SCMP_SYS(readv),
                               SCMP_SYS(preadv),
                               SCMP_SYS(lseek),
                               SCMP_SYS(fstat),
                               SCMP_SYS(close),
                               SCMP_SYS(sysinfo),
                               SCMP_SYS(uname),
                               SCMP_SYS(getrusage),
                               SCMP_SYS(membarrier),
                               SCMP_SYS(eventfd2)});
    for (const int descriptor : {STDERR_FILENO, kChannelDescriptor})
        rules.addWhere(SCMP_ACT_ALLOW, SCMP_SYS(write), {argumentIs(0, uint64_t(descriptor))});
    // fstat() goes by this name too.
    rules.addWhere(SCMP_ACT_ALLOW, SCMP_SYS(newfstatat),
                   {argumentIs(0, kPhotoDescriptor), argumentHas(3, AT_EMPTY_PATH, AT_EMPTY_PATH)});
    for (const int call : {SCMP_SYS(mmap), SCMP_SYS(mprotect)})
        rules.addWhere(SCMP_ACT_ALLOW, call, {argumentHas(2, PROT_EXEC, 0)});
    rules.addWhere(SCMP_ACT_ALLOW, SCMP_SYS(clone), {argumentHas(0, CLONE_THREAD, CLONE_THREAD)});
    rules.addWhere(SCMP_ACT_ALLOW, SCMP_SYS(prctl), {argumentIs(0, PR_SET_NAME)});
    rules.addWhere(SCMP_ACT_ALLOW, SCMP_SYS(tgkill), {argumentIs(0, uint64_t(::getpid()))});
}

/// What no decoder ever does.
void forbid(Rules &rules)
{
    rules.add(SCMP_ACT_KILL_PROCESS,
              {SCMP_SYS(execve), SCMP_SYS(execveat), SCMP_SYS(fork), SCMP_SYS(vfork), SCMP_SYS(ptrace),
               SCMP_SYS(process_vm_readv), SCMP_SYS(process_vm_writev), SCMP_SYS(socket), SCMP_SYS(socketpair),
               SCMP_SYS(connect), SCMP_SYS(bind), SCMP_SYS(listen), SCMP_SYS(accept), SCMP_SYS(accept4),
               SCMP_SYS(sendmsg), SCMP_SYS(recvmsg), SCMP_SYS(sendto), SCMP_SYS(recvfrom), SCMP_SYS(io_uring_setup)});
    rules.addWhere(SCMP_ACT_KILL_PROCESS, SCMP_SYS(clone), {argumentHas(0, CLONE_THREAD, 0)});
    rules.add(SCMP_ACT_ERRNO(ENOSYS), {SCMP_SYS(clone3)}); // its arguments cannot be looked at; then clone is tried
}

bool filterCalls()
{
    const Filter filter(seccomp_init(SCMP_ACT_ERRNO(EPERM)));
    if (!filter || seccomp_attr_set(filter.get(), SCMP_FLTATR_CTL_TSYNC, 1) != 0)
        return false;
    seccomp_attr_set(filter.get(), SCMP_FLTATR_CTL_OPTIMIZE, 2); // a tree: every call passes through
    Rules rules(filter.get());
    allowComputing(rules);
    forbid(rules);
    return rules.isGood() && seccomp_load(filter.get()) == 0;
}

#else

bool filterCalls()
{
    return false;
}

#endif

} // namespace

bool enterSandbox()
{
    ::syscall(SYS_close_range, unsigned(kChannelDescriptor + 1), ~0u, 0u);
    ::prctl(PR_SET_NO_NEW_PRIVS, 1, 0, 0, 0);
    setLimits();
    return !kIsSanitized && filterCalls();
}

} // namespace hazelmark::glass
