// fake_jni.h: a Java virtual machine as far as natives see one: a JNIEnv over small C++ objects, with a journal, a
// script of failures, and the checks that -Xcheck:jni makes and a few more.
#ifndef JSR75_PIM_TESTS_FAKE_JNI_H
#define JSR75_PIM_TESTS_FAKE_JNI_H

#include <cstddef>
#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include <jni.h>

// Any Java object. What it is says `class_name`; the member that goes with it holds its value.
struct java_object {
    std::string class_name;
    std::string text; // Of a string, in modified UTF-8; the message of an exception; the name of a class.
    std::vector<jint> ints;
    std::vector<jlong> longs;
    std::vector<jbyte> bytes;
    std::vector<std::shared_ptr<java_object>> elements;
    std::optional<jint> reason; // The second argument of an exception's constructor.
};
using java_value = std::shared_ptr<java_object>;

struct pending_exception {
    std::string class_name; // For instance "java/lang/RuntimeException".
    std::string message;
    std::string thrown_by; // The JNI function that left it pending.
};

class fake_jni {
public:
    fake_jni();
    ~fake_jni();
    fake_jni(const fake_jni&) = delete;
    fake_jni& operator=(const fake_jni&) = delete;

    JNIEnv* env();

    // ---- Arguments: objects that the Java side passes in ----

    jstring string(std::string modified_utf8);
    jintArray ints(std::vector<jint> values);
    jlongArray longs(std::vector<jlong> values);
    jbyteArray bytes(std::vector<jbyte> values);
    // Empty elements are null.
    jobjectArray strings(const std::vector<std::optional<std::string>>& values);
    jobjectArray byte_arrays(const std::vector<std::optional<std::string>>& values);

    // ---- Results: what a native handed back ----

    std::string text(jstring string) const;
    // The elements of a String[]; a null element shows as "null".
    std::vector<std::string> texts(jobjectArray array) const;
    std::vector<jint> values(jintArray array) const;
    std::vector<jlong> values(jlongArray array) const;
    std::string element_class(jobjectArray array) const;

    // ---- The script ----

    // Every call of `function`, such as "NewStringUTF", fails as a machine out of memory or classes would.
    void fail(const std::string& function);
    // The `nth` call of `function` fails, counted from 1.
    void fail_call(const std::string& function, int nth);
    // The `nth` call that can fail does, counted from 1 over all functions.
    void fail_nth_call(int nth);
    // The journal entry of the last call that the script made fail; empty when none did.
    const std::string& failed_call() const { return failed_call_; }
    // Texts of the test's own making need not be modified UTF-8 where the platform is hostile.
    void accept_invalid_text() { accepts_invalid_text_ = true; }

    // ---- What happened ----

    std::vector<std::string> calls; // For instance "NewStringUTF(Calendar)".
    std::vector<std::string> calls_of(const std::string& function) const;
    std::optional<pending_exception> pending;
    std::vector<pending_exception> thrown; // Every exception that ever became pending, in order.
    std::vector<java_value> constructed;   // Every object that NewObject made.
    std::vector<std::string> violations; // What -Xcheck:jni would complain about, and changes to the machine's memory.
    size_t local_reference_peak = 0;

    // The native has returned to Java: its local references are gone, what it handed back is the test's. For tests
    // that call many natives on one machine.
    void leave_native();

    // Characters and elements that were taken and not released.
    size_t unreleased() const { return borrowed_.size(); }

private:
    struct environment;
    struct functions;
    friend struct functions;

    struct borrowed_block {
        java_value owner;
        std::string kind; // "chars", "ints", "longs" or "bytes".
        std::vector<char> original;
        std::unique_ptr<char[]> copy;
    };

    jobject argument(java_value value);
    jobject local(java_value value);
    java_value value_of(jobject reference) const;
    bool enter(const std::string& function, const std::string& arguments, bool allowed_while_pending = false);
    bool scripted_failure(const std::string& function);
    void throw_new(const std::string& class_name, const std::string& message, const std::string& thrown_by);
    void out_of_memory(const std::string& function) { throw_new("java/lang/OutOfMemoryError", function, function); }
    char* lend(const java_value& owner, const std::string& kind, const void* data, size_t size);
    void take_back(const std::string& kind, const void* block, jint mode);

    std::unique_ptr<environment> environment_;
    std::map<jobject, java_value> arguments_;
    std::map<jobject, java_value> locals_;
    std::vector<std::unique_ptr<char>> handles_;
    std::map<const void*, borrowed_block> borrowed_;
    std::set<std::string> failures_;
    std::set<std::pair<std::string, int>> call_failures_;
    std::set<int> nth_failures_;
    std::map<std::string, int> call_counts_;
    int call_count_ = 0;
    std::string failed_call_;
    bool accepts_invalid_text_ = false;
};

// Whether a NUL-terminated text is well-formed modified UTF-8.
bool is_modified_utf8(const char* text);

#endif
