#include <fcntl.h>
#include <stdlib.h>
#include <unistd.h>

#include <cerrno>
#include <thread>

#include "Child.h"
#include "OSAL/OSAL.h"

namespace {
constexpr const char* loopback = "127.0.0.1";
}

TEST(Sockets, CarryAllBytesBothWaysBetweenProcesses) {
    OSAL::Socket server, client;
    ASSERT_EQ(server.Listen(0, loopback), 0);
    EXPECT_EQ(server.Accept(client, false), EAGAIN) << "nobody waits";
    const std::uint16_t port = server.Port();
    EXPECT_TRUE(OSAL::IsPortOpen(port));
    const std::string large(300000, 'x');
    Child peer([&] {
        OSAL::Socket own;
        std::string got;
        if (own.Connect(loopback, port) != 0 || own.Send(large.size(), large.data()) != 0) return 1;
        while (got.size() < 10 && own.HasData())
            if (own.Receive(got) != 0) return 2;
        return got == "answer 300" ? 0 : 3;
    });
    ASSERT_EQ(server.Accept(client, true), 0);
    std::string got;
    while (got.size() < large.size())
        ASSERT_EQ(client.Receive(got), 0);
    EXPECT_EQ(got, large);
    EXPECT_EQ(client.Send("%s %d", "answer", 300), 0);
    EXPECT_EQ(client.Send("%s", large.c_str()), EMSGSIZE);
    EXPECT_EQ(peer.Status(), 0);
    EXPECT_EQ(client.Receive(got), 0);
    EXPECT_EQ(got.size(), large.size()) << "nothing more";
    EXPECT_FALSE(client.HasData()) << "the other side ended";
}

TEST(Sockets, AnswerErrorsOfPeersThatAreGone) {
    OSAL::Socket server, first, second;
    ASSERT_EQ(server.Listen(0, loopback), 0);
    const std::uint16_t port = server.Port();
    ASSERT_EQ(first.Connect(loopback, port), 0);
    ASSERT_EQ(server.Accept(second, true), 0);
    EXPECT_TRUE(second.HasData()) << "there may be data yet";
    first.Close();
    int error = 0;
    for (int k = 0; k < 100 && error == 0; ++k)
        error = second.Send(1, "x");
    EXPECT_TRUE(error == EPIPE || error == ECONNRESET) << error;
    server.Close();
    OSAL::Socket late;
    EXPECT_EQ(late.Connect(loopback, port), ECONNREFUSED);
    EXPECT_EQ(late.Connect("no address", port), EINVAL);
    EXPECT_EQ(OSAL::Socket().Send(1, "x"), EBADF);
}

TEST(Sockets, GiveWhatASlowPeerSentSoFar) {
    OSAL::Socket server, near, far;
    ASSERT_EQ(server.Listen(0, loopback), 0);
    ASSERT_EQ(near.Connect(loopback, server.Port()), 0);
    ASSERT_EQ(server.Accept(far, true), 0);
    std::thread slow([&] {
        for (const char* piece : {"a", "b", "c"}) {
            far.Send(1, piece);
            OSAL::SleepMs(10);
        }
        far.Close();
    });
    std::string got;
    std::size_t calls = 0;
    for (std::size_t before = 1; before != got.size() || calls == 0; ++calls) {
        before = got.size();
        ASSERT_EQ(near.Receive(got), 0);
        if (got.size() == before) break;
    }
    slow.join();
    EXPECT_EQ(got, "abc");
    EXPECT_GE(calls, 1u);
}

TEST(SerialPorts, TalkToATerminalUntilItVanishes) {
    const int master = posix_openpt(O_RDWR | O_NOCTTY);
    ASSERT_TRUE(master >= 0 && grantpt(master) == 0 && unlockpt(master) == 0);
    OSAL::SerialPort port;
    EXPECT_EQ(port.Open("/dev/null"), ENOTTY);
    EXPECT_EQ(port.Open(ptsname(master), {.baud = 12345}), EINVAL);
    ASSERT_EQ(port.Open(ptsname(master)), 0);
    std::string text;
    ASSERT_EQ(write(master, "reply\r\n", 7), 7);
    EXPECT_EQ(port.Read(text), 7);
    EXPECT_EQ(text, "reply\r\n") << "bytes as they are";
    EXPECT_TRUE(port.Write("ask", 3));
    char buffer[8] = {};
    EXPECT_EQ(read(master, buffer, sizeof buffer), 3);
    EXPECT_STREQ(buffer, "ask");
    // A read goes on until a pause, its whole time, or 1024 bytes.
    for (const auto& [interval, total, size] : {std::tuple{1, 0, 24}, {0, 1, 24}, {60000, 0, 1024}, {0, 60000, 1024}}) {
        const int most = size;  // a binding isn't captured
        ASSERT_TRUE(port.PurgeComm() && port.SetTimeouts(interval, total, 0, 0, 0));
        ASSERT_EQ(write(master, std::string(24, 'x').data(), 24), 24);
        std::thread late([&] {
            OSAL::SleepMs(50);
            if (most > 24) {
                EXPECT_EQ(write(master, std::string(1000, 'y').data(), 1000), 1000);
            }
        });
        text.clear();
        EXPECT_EQ(port.Read(text), most);
        late.join();
    }
    EXPECT_TRUE(port.SetTimeouts(1, 1, 1, 20, 0) && port.PurgeComm());
    EXPECT_FALSE(port.Write(std::string(1 << 20, 'x').data(), 1 << 20)) << "nobody reads";
    close(master);
    EXPECT_EQ(port.Read(text), -1);
    EXPECT_FALSE(port.Write("ask", 3));
    port.Close();
    EXPECT_FALSE(port.PurgeComm());
}

TEST(NamedPipes, HaveOneServerAndOneClientAfterTheOther) {
    const std::string name = "osal\\" + std::to_string(getpid());
    EXPECT_FALSE(OSAL::NamedPipe::Wait(name, 5));
    OSAL::NamedPipe server, second;
    EXPECT_NE(second.Open(name), 0);
    ASSERT_EQ(server.Create(name), 0);
    EXPECT_EQ(second.Create(name), EBUSY);
    Child client([&] {
        OSAL::NamedPipe pipe;
        char got[8] = {};
        std::size_t count = 0;
        if (!OSAL::NamedPipe::Wait(name, 2000) || pipe.Open(name) != 0 || pipe.Write("ask", 3) != 0) return 1;
        return pipe.Read(got, 8, count) == 0 && count == 5 && std::string(got) == "reply" ? 0 : 2;
    });
    ASSERT_EQ(server.Connect(), 0);
    char got[8] = {};
    std::size_t count = 0;
    EXPECT_EQ(server.Read(got, 8, count), 0);
    EXPECT_STREQ(got, "ask");
    EXPECT_EQ(server.SetHandleState(false), 0);
    EXPECT_EQ(server.Read(got, 8, count), EAGAIN);
    EXPECT_EQ(server.Peek(count), 0);
    EXPECT_EQ(count, 0u);
    EXPECT_EQ(server.Write("reply", 5), 0);
    EXPECT_EQ(client.Status(), 0);
    Child killed([&] {
        OSAL::NamedPipe pipe;
        return pipe.Open(name) == 0 ? raise(SIGKILL) : 1;
    });
    EXPECT_EQ(server.Connect(), 0) << "takes the next client";
    EXPECT_EQ(killed.Status(), -SIGKILL);
    EXPECT_EQ(server.Read(got, 8, count), 0);
    EXPECT_EQ(count, 0u) << "it is gone";
    EXPECT_EQ(server.Disconnect(), 0);
    EXPECT_EQ(server.Read(got, 8, count), EBADF);
}
