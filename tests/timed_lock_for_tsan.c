// The thread sanitizer of clang 14 does not know pthread_mutex_clocklock(), through which std::timed_mutex waits by the
// steady clock, and so takes what such a lock guards for a race. Here it waits through the call that the sanitizer
// knows.
#include <pthread.h>
#include <time.h>

int pthread_mutex_clocklock(pthread_mutex_t* mutex, clockid_t clock, const struct timespec* until)
{
    const long second = 1000000000;
    struct timespec now, wall;
    clock_gettime(clock, &now);
    clock_gettime(CLOCK_REALTIME, &wall);
    wall.tv_sec += until->tv_sec - now.tv_sec;
    wall.tv_nsec += until->tv_nsec - now.tv_nsec;
    if (wall.tv_nsec < 0) {
        wall.tv_nsec += second;
        --wall.tv_sec;
    } else if (wall.tv_nsec >= second) {
        wall.tv_nsec -= second;
        ++wall.tv_sec;
    }
    return pthread_mutex_timedlock(mutex, &wall);
}
