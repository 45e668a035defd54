#include <gtest/gtest.h>

#include <memory>
#include <string>

#include "InputTestUtil.h"
#include "base/Exception.h"
#include "input/InputBStream.h"
#include "input/InputBasicFile.h"
#include "input/InputMultiFile.h"
#include "input/InputServer.h"

using inputtest::TempDir;
using zun::InputServer;
using zun::InputStream;

namespace {

InputServer& server() { return InputServer::getInstance(); }

std::unique_ptr<InputStream> open(const std::string& path, const char* driver = nullptr,
                                  const char* option = nullptr) {
    return std::unique_ptr<InputStream>(server().getFile(path.c_str(), InputStream::BigEndian, driver, option));
}

template <class T>
T* as(const std::unique_ptr<InputStream>& s) {
    return dynamic_cast<T*>(s.get());
}

}  // namespace

TEST(InputServer, DriversAtTheStart) {
    InputServer& srv = server();
    ASSERT_GE(srv.drivers.count, 6);
    const char* names[6] = {"multi", "basic", "fstream", "memory", "buffer", "bmulti"};
    const char* defaults[6] = {"buffer:2", nullptr, nullptr, nullptr, "2", "2"};
    for (int i = 0; i < 6; ++i) {
        EXPECT_EQ(srv.drivers[i], names[i]);
        EXPECT_EQ(srv.options[i], defaults[i]) << names[i];
    }
    EXPECT_STREQ(srv.getDriverDefault(), "buffer");
    EXPECT_EQ(&srv, &InputServer::getInstance());
}

TEST(InputServer, DefaultDriverIsTheBuffer) {
    TempDir dir;
    std::string path = dir.write("d.bin", "data");
    auto s = open(path);
    ASSERT_NE(as<zun::InputBStream>(s), nullptr);
    EXPECT_EQ(as<zun::InputBStream>(s)->bufSize, 2048);
    auto ignored = open(path, nullptr, "9");  // no driver: the option is dropped
    EXPECT_EQ(as<zun::InputBStream>(ignored)->bufSize, 2048);
}

TEST(InputServer, BufferOptionsInKilobytes) {
    TempDir dir;
    std::string path = dir.write("d.bin", inputtest::pattern(10000));
    EXPECT_EQ(as<zun::InputBStream>(open(path, "buffer", "5"))->bufSize, 5 * 1024);
    EXPECT_EQ(as<zun::InputBStream>(open(path, "buffer", "-3"))->bufSize, 3 * 1024);
    EXPECT_EQ(as<zun::InputBStream>(open(path, "buffer", "0"))->bufSize, 10000);
    EXPECT_EQ(as<zun::InputBStream>(open(path, "buffer", ""))->bufSize, 2048);  // empty: the default
    EXPECT_EQ(open(path, "buffer", "5k"), nullptr);
    EXPECT_EQ(as<zun::InputBStream>(open(path, "memory"))->bufSize, 10000);
    EXPECT_EQ(open(path, "memory", "4"), nullptr);  // no default option: none accepted
}

TEST(InputServer, DriversThatTakeNoOption) {
    TempDir dir;
    std::string path = dir.write("d.bin", "abc");
    auto basic = open(path, "basic");
    EXPECT_NE(as<zun::InputBasicFile>(basic), nullptr);
    EXPECT_EQ(open(path, "basic", "1"), nullptr);
    auto fs = open(path, "fstream");
    ASSERT_NE(as<zun::InputFStream>(fs), nullptr);
    EXPECT_EQ(fs->size(), 3);
    EXPECT_EQ(open(path, "nosuchdriver"), nullptr);
}

TEST(InputServer, DriverInsideThePath) {
    TempDir dir;
    std::string path = dir.write("d.bin", inputtest::pattern(8000));
    auto basic = open(path + "::basic");
    ASSERT_NE(as<zun::InputBasicFile>(basic), nullptr);
    EXPECT_STREQ(basic->name(), path.c_str());
    auto buffered = open(path + "::buffer:3");
    ASSERT_NE(as<zun::InputBStream>(buffered), nullptr);
    EXPECT_EQ(as<zun::InputBStream>(buffered)->bufSize, 3 * 1024);
    auto plain = open(path + "::buffer");
    EXPECT_EQ(as<zun::InputBStream>(plain)->bufSize, 2048);
    // a given driver wins over the path's
    auto given = open(path, "basic");
    EXPECT_NE(as<zun::InputBasicFile>(given), nullptr);
}

TEST(InputServer, MissingPathGoesToTheMultiDriver) {
    TempDir dir;
    try {
        open(dir.path("absent.bin"), "buffer", "5");
        FAIL() << "no error";
    } catch (zun::StdError& e) {
        EXPECT_EQ(e.code(), 2);
        EXPECT_EQ(std::string(e.message.str()).rfind("no file matching ", 0), 0u);
    }
}

TEST(InputServer, WildcardsOpenEachMatchByTheDriver) {
    TempDir dir;
    dir.write("w1", "one");
    dir.write("w2", "two");
    auto s = open(dir.path("w*"), "buffer", "3");
    auto* m = as<zun::InputMultiFile>(s);
    ASSERT_NE(m, nullptr);
    ASSERT_EQ(m->streams.count, 2);
    for (long i = 0; i < 2; ++i) {
        auto* part = dynamic_cast<zun::InputBStream*>(m->streams.at(i));
        ASSERT_NE(part, nullptr);
        EXPECT_EQ(part->bufSize, 3 * 1024);
    }
    auto basics = open(dir.path("w*"), "basic");
    auto* mb = as<zun::InputMultiFile>(basics);
    ASSERT_NE(mb, nullptr);
    EXPECT_NE(dynamic_cast<zun::InputBasicFile*>(mb->streams.at(1)), nullptr);
    auto unbuffered = open(dir.path("w*"));
    ASSERT_NE(as<zun::InputMultiFile>(unbuffered), nullptr);
    char b[6];
    EXPECT_EQ(unbuffered->bufread(b, 6, 0), 6u);
    EXPECT_EQ(std::string(b, 6), "onetwo");
}

TEST(InputServer, MultiDriversByName) {
    TempDir dir;
    dir.write("m1", "ab");
    dir.write("m2", "cd");
    auto multi = open(dir.path("m*"), "multi");
    auto* m = as<zun::InputMultiFile>(multi);
    ASSERT_NE(m, nullptr);
    EXPECT_EQ(dynamic_cast<zun::InputBStream*>(m->streams.at(0))->bufSize, 2048);  // "buffer:2"
    auto bmulti = open(dir.path("m*"), "bmulti", "1");
    auto* b = as<zun::InputBStream>(bmulti);
    ASSERT_NE(b, nullptr);
    EXPECT_NE(dynamic_cast<zun::InputMultiFile*>(b->source), nullptr);
    char out[4];
    EXPECT_EQ(b->bufread(out, 4, 0), 4u);
    EXPECT_EQ(std::string(out, 4), "abcd");
    // a plain file through bmulti is a set of one
    std::string one = dir.path("m1");
    auto single = open(one, "bmulti");
    EXPECT_NE(dynamic_cast<zun::InputMultiFile*>(as<zun::InputBStream>(single)->source), nullptr);
}

TEST(InputServer, DriverDefaultsCanChange) {
    TempDir dir;
    std::string path = dir.write("d.bin", inputtest::pattern(9000));
    InputServer& srv = server();
    srv.setDriverOption("4");
    EXPECT_EQ(as<zun::InputBStream>(open(path))->bufSize, 4 * 1024);
    srv.setDriverOption("1", "memory");  // no default option: stays without
    EXPECT_EQ(open(path, "memory", "1"), nullptr);
    srv.setDriverDefault("basic");
    EXPECT_NE(as<zun::InputBasicFile>(open(path)), nullptr);
    srv.setDriverDefault("buffer");
    srv.setDriverOption("2", "buffer");
    EXPECT_EQ(as<zun::InputBStream>(open(path))->bufSize, 2048);
}

TEST(InputServer, AddedDriverIsFoundFirst) {
    InputServer& srv = server();
    long before = srv.drivers.count;
    srv.addDriver("basic", [](const char*, InputStream::ByteOrder, const char*) -> InputStream* {
        return new zun::InputSStream("replaced", -1, "custom");
    }, nullptr);
    TempDir dir;
    std::string path = dir.write("d.bin", "abc");
    auto s = open(path, "basic");
    ASSERT_NE(s, nullptr);
    EXPECT_STREQ(s->name(), "custom");
    srv.drivers.del(srv.drivers.count - before);
    srv.options.del(srv.options.count - before);
    srv.factories.del(srv.factories.count - before);
    EXPECT_NE(as<zun::InputBasicFile>(open(path, "basic")), nullptr);
}
