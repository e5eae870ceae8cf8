#include <sys/resource.h>
#include <sys/stat.h>

#include <cerrno>

#include "Child.h"
#include "Folder.h"
#include "OSAL/OSAL.h"

namespace {

using Processes = Files;

/// A crash that leaves no core file behind.
template <typename Crash>
int Crashing(const std::string& temp, Crash crash) {
    Child child([&] {
        const rlimit none{0, 0};
        setrlimit(RLIMIT_CORE, &none);
        setenv("TMPDIR", temp.c_str(), 1);
        freopen("/dev/null", "w", stderr);
        for (const int taken : {SIGSEGV, SIGABRT, SIGFPE})
            signal(taken, SIG_DFL);  // a sanitizer's handler would stay
        OSAL::InstallCrashReports();
        crash();
        return 0;
    });
    return child.Status();
}

int Overflow(int depth) {
    volatile char room[4096];
    room[0] = static_cast<char>(depth);
    return depth < 0 ? 0 : room[0] + Overflow(depth + 1) + room[0];
}

}  // namespace

TEST_F(Processes, AreFoundByTheirNameAndEnded) {
    const std::string name = "osal sleeper of a long name";
    fs::copy_file("/bin/sleep", m_folder + name);
    EXPECT_FALSE(OSAL::IsProcessRunning(name, false));
    OSAL::ProcessInformation one, two, none;
    ASSERT_TRUE(OSAL::StartProcess(m_folder, name, "60", one)) << OSAL::GetLastError();
    EXPECT_TRUE(OSAL::IsProcessRunning(name, false));
    EXPECT_FALSE(OSAL::IsProcessRunning(name, true)) << "one isn't two";
    ASSERT_TRUE(OSAL::StartProcess(m_folder, name, "\"60\"", two));
    EXPECT_TRUE(OSAL::IsProcessRunning(name, true));
    EXPECT_TRUE(OSAL::TerminateHandle(one));
    EXPECT_TRUE(OSAL::TerminateHandle(one)) << "it is gone for long";
    EXPECT_TRUE(OSAL::TerminateByName(name));
    EXPECT_FALSE(OSAL::IsProcessRunning(name, false));
    EXPECT_TRUE(OSAL::TerminateByName(name)) << "none is left to end";
    EXPECT_FALSE(OSAL::StartProcess(m_folder, "missing", "", none));
    EXPECT_EQ(OSAL::GetLastError(), static_cast<unsigned>(ENOENT));
    EXPECT_FALSE(OSAL::TerminateHandle(none));
}

TEST_F(Processes, GetTheirArgumentsFolderAndOutput) {
    EXPECT_EQ(OSAL::SplitArguments(" -T  -C \"a b\\c\" \"\" x\"y z\""),
              (std::vector<std::string>{"-T", "-C", "a b\\c", "", "xy z"}));
    const auto output = OSAL::OpenFile(m_folder + "out", OSAL::ReadWrite, false);
    std::ofstream(m_folder + "show") << "#!/bin/sh\necho \"$1|$2\"; cat; pwd >&2\n";
    chmod((m_folder + "show").c_str(), 0700);
    OSAL::ProcessInformation started;
    ASSERT_TRUE(OSAL::StartProcess(m_folder, "show", "\"a b\" c", started, {.output = output}));
    while (OSAL::IsProcessRunning("show", false))
        OSAL::SleepMs(1);
    EXPECT_TRUE(OSAL::TerminateHandle(started));
    OSAL::CloseFile(output);
    EXPECT_EQ(TextOf(m_folder + "out") + "/", "a b|c\n" + fs::canonical(m_folder).string() + "\n/");
}

TEST(Restricted, CommandsHaveNoRightsAndNoneToGain) {
    const auto result = OSAL::RunRestricted("grep -E '^(CapEff|CapPrm|NoNewPrivs)' /proc/self/status; exit 7");
    ASSERT_TRUE(result);
    EXPECT_EQ(result->output, "CapPrm:\t0000000000000000\nCapEff:\t0000000000000000\nNoNewPrivs:\t1\n");
    EXPECT_EQ(result->status, 7);
    EXPECT_EQ(OSAL::RunRestricted("kill -9 $$")->status, 128 + SIGKILL);
}

TEST_F(Processes, LoadLibrariesOnlyFromWhereTheyStand) {
    OSAL::Library missing("libc.so.6"), text(Make("text.so", "no library")), real("/lib/x86_64-linux-gnu/libm.so.6");
    EXPECT_EQ(missing.GetProcAddress("malloc"), nullptr) << "beside the program, on no search path";
    EXPECT_NE(missing.Reason(), "");
    EXPECT_FALSE(text.Load());
    EXPECT_EQ(real.GetProcAddress("cos") != nullptr, fs::exists(real.Name()));
    EXPECT_EQ(real.GetProcAddress("no such entry"), nullptr);
}

TEST_F(Processes, TrustAFileWhoseSignatureIsTheKeysOwn) {
    const std::string key = m_folder + "key", pub = m_folder + "pub", file = Make("file", "content");
    const std::string sign = "openssl genpkey -algorithm RSA -out " + key + " 2>&1 && openssl pkey -in " + key +
                             " -pubout -out " + pub + " && openssl dgst -sha256 -sign " + key + " -out " + file +
                             ".sig " + file;
    if (!fs::exists("/usr/bin/openssl")) GTEST_SKIP() << "no tool";
    const OSAL::WinTrustApi trust(pub);
    const auto path = fs::path(file).wstring();
    EXPECT_EQ(trust.Verify(path), OSAL::TrustNoSignature);
    ASSERT_EQ(OSAL::RunRestricted(sign)->status, 0);
    EXPECT_EQ(trust.Verify(path), 0u);
    EXPECT_EQ(OSAL::WinTrustApi(m_folder + "other").Verify(path), OSAL::TrustNoSignature);
    Make("file", "changed");
    EXPECT_EQ(trust.Verify(path), OSAL::TrustBadDigest);
    EXPECT_EQ(trust.Verify(L"/no/file"), OSAL::TrustFileError);
    EXPECT_FALSE(trust.LoadSignedLibrary("none").IsLoaded());
}

TEST_F(Processes, CrashWithAReportAndTheirOwnSignal) {
    struct Case {
        int signal;
        void (*crash)();
        std::string head;
    };
    const Case cases[] = {
        {SIGSEGV, [] { *reinterpret_cast<volatile int*>(0x1234) = 1; },
         "signal 11 SIGSEGV\naddress 0x0000000000001234"},
        {SIGSEGV, [] { static_cast<void>(Overflow(0)); }, "signal 11 SIGSEGV\n"},
        {SIGSEGV,
         [] {
             OSAL::ThreadRecord record{nullptr, [](void*) { return static_cast<std::uint32_t>(Overflow(0)); }};
             OSAL::Thread thread(&record);
             thread.Resume();
             thread.Wait(SyncObjectsOSAL::Infinite);
         },
         "signal 11 SIGSEGV\n"},
        {SIGABRT, [] { abort(); }, "signal 6 SIGABRT\n"},
        {SIGFPE, [] { raise(SIGFPE); }, "signal 8 SIGFPE\n"},
    };
    for (const Case& c : cases) {
        EXPECT_EQ(Crashing(m_folder, c.crash), -c.signal);
        std::string report;
        for (const auto& entry : fs::directory_iterator(m_folder + "Crash")) {
            report += TextOf(entry.path());
            const std::string expected = OSAL::FormatLocalTime("%Y%m%d-%H");
            EXPECT_EQ(entry.path().filename().string().substr(0, expected.size()), expected);
            EXPECT_EQ(fs::status(entry.path()).permissions(), static_cast<fs::perms>(0600));
        }
        EXPECT_EQ(report.substr(0, c.head.size()), c.head);
        for (const char* part : {"\nregisters\n", "\ncall stack\n", "test_OSAL(", "\nmemory map\n", "[stack]"})
            EXPECT_NE(report.find(part), std::string::npos) << part;
        fs::remove_all(m_folder + "Crash");
    }
    fs::create_directory_symlink("/", m_folder + "Crash");
    EXPECT_EQ(Crashing(m_folder, [] { abort(); }), -SIGABRT) << "without a report";
}
