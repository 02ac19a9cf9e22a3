// Writing without a signal: one to a pipe that nobody reads, or beyond the size that files may have, ends the
// process by default, where the caller should get an error.
#pragma once

#include <cerrno>
#include <csignal>
#include <ctime>

// Holds SIGPIPE and SIGXFSZ back from this thread. Who held them back before gets them as before.
class HeldSignals {
public:
    HeldSignals() noexcept
    {
        sigset_t held;
        sigemptyset(&held);
        sigaddset(&held, SIGPIPE);
        sigaddset(&held, SIGXFSZ);
        pthread_sigmask(SIG_BLOCK, &held, &m_before);
    }
    HeldSignals(const HeldSignals&) = delete;
    HeldSignals& operator=(const HeldSignals&) = delete;
    ~HeldSignals() { pthread_sigmask(SIG_SETMASK, &m_before, nullptr); }

    // Takes the signal away that came with this errno, which stays.
    void TakeAway(int posixError) const noexcept
    {
        const int number = posixError == EPIPE ? SIGPIPE : posixError == EFBIG ? SIGXFSZ : 0;
        if (number == 0 || sigismember(&m_before, number) == 1)
            return;
        sigset_t taken;
        sigemptyset(&taken);
        sigaddset(&taken, number);
        constexpr timespec noTime = {};
        sigtimedwait(&taken, nullptr, &noTime);
        errno = posixError;
    }

private:
    sigset_t m_before;
};
