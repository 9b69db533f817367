// Fetching from a server of our own on the loopback interface.
#include <arpa/inet.h>
#include <fcntl.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <unistd.h>

#include <string>
#include <thread>

#include "host/files.h"
#include "host/memory.h"
#include "host/runtime/fetching/fetch.h"
#include "host/runtime/memory/memory_report.h"
#include "tests/runtime/scratch.h"

namespace {

// Answers one connection with a fixed text.
class OneAnswer {
  public:
    explicit OneAnswer(std::string answer) : answer_(std::move(answer)) {
        listener_ = socket(AF_INET, SOCK_STREAM, 0);
        sockaddr_in address{};
        address.sin_family = AF_INET;
        address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        socklen_t size = sizeof address;
        auto* generic = reinterpret_cast<sockaddr*>(&address);
        if (bind(listener_, generic, size) != 0 || listen(listener_, 1) != 0 ||
            getsockname(listener_, generic, &size) != 0) {
            throw std::runtime_error("no listening socket");
        }
        url_ = "http://127.0.0.1:" + std::to_string(ntohs(address.sin_port)) + "/file.xml";
        thread_ = std::thread([this] { serve(); });
    }
    ~OneAnswer() {
        shutdown(listener_, SHUT_RDWR);
        thread_.join();
        close(listener_);
    }
    OneAnswer(const OneAnswer&) = delete;
    OneAnswer& operator=(const OneAnswer&) = delete;
    const std::string& url() const { return url_; }

  private:
    void serve() const {
        const int connection = accept(listener_, nullptr, nullptr);
        if (connection < 0) return;
        char request[4096];
        if (read(connection, request, sizeof request) > 0) {
            EXPECT_EQ(write(connection, answer_.data(), answer_.size()),
                      static_cast<ssize_t>(answer_.size()));
        }
        close(connection);
    }

    std::string answer_;
    std::string url_;
    int listener_;
    std::thread thread_;
};

class FetchUrl : public testing::Test {
  protected:
    ScratchFolder scratch_;
    Environment folder_{"TMPDIR", scratch_.file("").c_str()};
    Environment no_proxy_{"no_proxy", "*"};
    // One MiB: as much as is allowed here.
    Environment limit_{"SXML_FETCH_LIMIT", "1"};
    const std::string ok_ = "HTTP/1.1 200 OK\r\n";
    const std::string document_ = std::string(std::size_t{1024} * 1024, 'x');
    std::size_t blocks_before_ = host::live_blocks().size();

    void TearDown() override { EXPECT_EQ(host::live_blocks().size(), blocks_before_); }
};

TEST_F(FetchUrl, StoresAWholeDocumentInAPrivateFile) {
    const OneAnswer server(ok_ + "Content-Length: 1048576\r\n\r\n" + document_);
    char* name = host_fetch_url(server.url().c_str());
    ASSERT_NE(name, nullptr);
    EXPECT_TRUE(read_file(name) == document_);
    struct stat status {};
    ASSERT_EQ(stat(name, &status), 0);
    EXPECT_EQ(status.st_mode & 0777, 0600U);
    EXPECT_EQ(host_remove_file(name), 0);
    host_free(name, "tests/runtime/fetch", 1, 0);
}

TEST_F(FetchUrl, LeavesNothingBehindWhenTheDocumentIsNotComplete) {
    const std::string answers[] = {
        "HTTP/1.1 404 Not Found\r\nContent-Length: 4\r\n\r\nnone",
        "HTTP/1.1 200 OK\r\nContent-Length: 100\r\n\r\n<a>",
        "HTTP/1.1 200 OK\r\nTransfer-Encoding: chunked\r\n\r\n10\r\n<a>",
        "HTTP/1.1 302 Found\r\nLocation: file:///etc/hostname\r\nContent-Length: 0\r\n\r\n",
        "",
        ok_ + "Content-Length: 1048577\r\n\r\n" + document_ + ">",
        ok_ + "\r\n" + document_ + ">",  // no length announced
    };
    for (const std::string& answer : answers) {
        const OneAnswer server(answer);
        EXPECT_EQ(host_fetch_url(server.url().c_str()), nullptr) << answer.substr(0, 100);
        EXPECT_EQ(scratch_.size(), 0U);
    }
    std::string refused;
    {
        const OneAnswer gone("");
        refused = gone.url();
    }
    for (const char* url :
         {refused.c_str(), "file:///etc/hostname", "no url", "", "ftp://127.0.0.1/x"}) {
        EXPECT_EQ(host_fetch_url(url), nullptr) << url;
        EXPECT_EQ(scratch_.size(), 0U);
    }
    EXPECT_EQ(host_fetch_url(nullptr), nullptr);
}

// A document of the largest size allowed when nothing is set is begun, one byte more is refused as
// soon as it is announced.
TEST_F(FetchUrl, NoValueTakesTheLimitAway) {
    for (const char* value : {"0", "-1", "no", "much"}) {
        const Environment limit("SXML_FETCH_LIMIT", value);
        for (const bool is_too_large : {false, true}) {
            const OneAnswer server(ok_ + "Content-Length: 107374182" + (is_too_large ? "5" : "4") +
                                   "\r\n\r\n<a/>");
            const std::string name = scratch_.file("fetched");
            const int file = open(name.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600);
            const std::string reason = host::fetch_document(server.url(), file);
            close(file);
            EXPECT_EQ(reason == "it is larger than SXML_FETCH_LIMIT allows", is_too_large)
                << value << ": " << reason;
            EXPECT_EQ(read_file(name), is_too_large ? "" : "<a/>") << value;
        }
    }
}

TEST_F(FetchUrl, FailsCleanlyWithoutMemoryOrFolder) {
    host::fail_allocation(1);
    EXPECT_EQ(host_fetch_url("http://127.0.0.1:1/x"), nullptr);
    EXPECT_TRUE(host::allocation_failed());
    const Environment nowhere("TMPDIR", scratch_.file("missing").c_str());
    EXPECT_EQ(host_fetch_url("http://127.0.0.1:1/x"), nullptr);
}

}  // namespace
