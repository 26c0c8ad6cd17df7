// time_zone.h: the process's time zone for the length of a scope.
#ifndef JSR75_PIM_TESTS_TIME_ZONE_H
#define JSR75_PIM_TESTS_TIME_ZONE_H

#include <cstdlib>
#include <ctime>
#include <optional>
#include <string>

// The rules stand in the names themselves, so that a test does not depend on the machine's zone files.
inline constexpr char UTC[] = "UTC0";
inline constexpr char TOKYO[] = "JST-9";                       // Asia/Tokyo
inline constexpr char BERLIN[] = "CET-1CEST,M3.5.0,M10.5.0/3"; // Europe/Berlin

class time_zone {
public:
    explicit time_zone(const char* name)
    {
        if (const char* before = std::getenv("TZ")) before_ = before;
        set(name);
    }
    ~time_zone() { set(before_ ? before_->c_str() : nullptr); }
    time_zone(const time_zone&) = delete;
    time_zone& operator=(const time_zone&) = delete;

private:
    static void set(const char* name)
    {
        if (name != nullptr)
            setenv("TZ", name, 1);
        else
            unsetenv("TZ");
        tzset();
    }

    std::optional<std::string> before_;
};

#endif
