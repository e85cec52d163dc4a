// C++ exceptions end at the JNI boundary: guardNative turns them into a Java
// exception (through a stub JNIEnv that records ThrowNew) and returns a
// zero result; and every native of the library runs through it.
#include <gtest/gtest.h>

#include <cstddef>
#include <filesystem>
#include <fstream>
#include <functional>
#include <new>
#include <regex>
#include <stdexcept>
#include <string>
#include <vector>

#include "jni/bridge/native_guard.h"

namespace {

struct Thrown {
    std::string className;
    std::string message;
};

// The few JNI functions jniThrowException and the guard use.
struct StubEnv {
    JNINativeInterface_ table{};
    JNIEnv env{};
    bool pending = false;
    std::vector<Thrown> thrown;
    std::string lastClass;

    StubEnv() {
        table.FindClass = [](JNIEnv* e, const char* name) -> jclass {
            self(e)->lastClass = name;
            return reinterpret_cast<jclass>(e);
        };
        table.ThrowNew = [](JNIEnv* e, jclass, const char* message) -> jint {
            self(e)->thrown.push_back({self(e)->lastClass, message});
            self(e)->pending = true;
            return 0;
        };
        table.ExceptionCheck = [](JNIEnv* e) -> jboolean { return self(e)->pending; };
        table.DeleteLocalRef = [](JNIEnv*, jobject) {};
        env.functions = &table;
    }
    static StubEnv* self(JNIEnv* e) {
        return reinterpret_cast<StubEnv*>(reinterpret_cast<char*>(e) - offsetof(StubEnv, env));
    }
};

}  // namespace

TEST(NativeGuard, CxxExceptionsBecomeJavaExceptionsAndZeroResults) {
    struct Case {
        const char* name;
        std::function<jint()> body;
        bool javaPending;  // a Java exception raised before the C++ one stays
        std::vector<std::string> expected;  // class: message, empty when nothing is thrown
        jint result;
    };
    const Case cases[] = {
        {"no exception", [] { return 7; }, false, {}, 7},
        {"bad_alloc", []() -> jint { throw std::bad_alloc(); }, false,
         {"java/lang/RuntimeException: out of native memory"}, 0},
        {"parse error", []() -> jint { throw std::runtime_error("bad element"); }, false,
         {"java/lang/RuntimeException: bad element"}, 0},
        {"not std", []() -> jint { throw 3; }, false, {"java/lang/RuntimeException: native call failed"}, 0},
        {"Java first", []() -> jint { throw std::bad_alloc(); }, true, {}, 0},
    };
    for (const Case& c : cases) {
        StubEnv stub;
        stub.pending = c.javaPending;
        jint got = ifc::guardNative(&stub.env, c.body);
        std::vector<std::string> raised;
        for (const Thrown& t : stub.thrown) raised.push_back(t.className + ": " + t.message);
        EXPECT_EQ(got, c.result) << c.name;
        EXPECT_EQ(raised, c.expected) << c.name;
    }

    StubEnv stub;
    jobject none = ifc::guardNative(&stub.env, []() -> jobject { throw std::length_error("vector"); });
    ifc::guardNative(&stub.env, [] { throw std::bad_alloc(); });  // void natives too; the first stays pending
    EXPECT_EQ(none, nullptr);
    ASSERT_EQ(stub.thrown.size(), 1u);
    EXPECT_EQ(stub.thrown[0].message, "vector");
}

// A native added without the guard would let std::bad_alloc abort the JVM.
TEST(NativeGuard, EveryNativeOfTheLibraryRunsGuarded) {
    const std::regex native(R"(JNIEXPORT \w+ JNICALL (Java_\w+)\([^{]*\{\n([^\n]*)\n)");
    int natives = 0;
    for (const char* dir : {"src/jni", "src/render"}) {
        for (const auto& entry : std::filesystem::recursive_directory_iterator(std::filesystem::path(IFC_SOURCE_DIR) / dir)) {
            if (entry.path().extension() != ".cc") continue;
            std::ifstream file(entry.path());
            std::string text((std::istreambuf_iterator<char>(file)), std::istreambuf_iterator<char>());
            for (std::sregex_iterator m(text.begin(), text.end(), native), end; m != end; ++m, ++natives) {
                EXPECT_NE((*m)[2].str().find("guardNative("), std::string::npos)
                    << (*m)[1] << " in " << entry.path().filename();
            }
        }
    }
    EXPECT_GT(natives, 60);
}
