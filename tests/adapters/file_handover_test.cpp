#include "adapters/file_handover.h"

#include <QTimer>
#include <filesystem>
#include <memory>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include "adapters/one_event.h"
#include "adapters/qt_event_pump.h"
#include "base/error.h"
#include "support/temp_folder.h"

namespace vrx::testing {
namespace {

namespace fs = std::filesystem;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

constexpr Milliseconds kLimit{10'000};
constexpr Milliseconds kNoTime{200};  // to see that nobody answers

using Paths = std::vector<fs::path>;

// A sender that sends what it likes.
class RawSender {
 public:
  explicit RawSender(const fs::path& path) : fd_(socket(AF_UNIX, SOCK_SEQPACKET, 0)) {
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    path.native().copy(static_cast<char*>(address.sun_path), sizeof address.sun_path - 1);
    connected_ = connect(fd_, reinterpret_cast<const sockaddr*>(&address),  // NOLINT
                         sizeof address) == 0;
  }
  ~RawSender() { close(fd_); }
  RawSender(const RawSender&) = delete;
  RawSender& operator=(const RawSender&) = delete;

  bool Connected() const { return connected_; }
  bool Send(const std::string& packet) const {
    return send(fd_, packet.data(), packet.size(), MSG_NOSIGNAL) ==
           static_cast<ssize_t>(packet.size());
  }
  // The answer that is there; empty if the connection has ended or there is none.
  std::string Answer() const {
    std::string answer(64, '\0');
    const ssize_t length = recv(fd_, answer.data(), answer.size(), MSG_DONTWAIT);
    answer.resize(length > 0 ? static_cast<std::size_t>(length) : 0);
    return answer;
  }

 private:
  int fd_;
  bool connected_ = false;
};

class FileHandover : public ::testing::Test {
 protected:
  void Listen() {
    receiver_ = std::make_unique<FileReceiver>(
        socket_, [this](Paths paths) { taken_.push_back(std::move(paths)); });
  }
  bool HandOver(const Paths& paths, Milliseconds limit = kLimit) {
    return HandOverFiles(socket_, paths, pump_, limit);
  }
  std::string AnswerTo(const std::string& packet) {
    const RawSender sender(socket_);
    EXPECT_TRUE(sender.Connected());
    EXPECT_TRUE(sender.Send(packet));
    std::string answer;
    for (int i = 0; i < 100 && answer.empty(); ++i) {
      pump_.Pump(Milliseconds{10});
      answer = sender.Answer();
    }
    return answer;
  }

  TempFolder folder_;
  fs::path socket_ = folder_ / "vrx2260.socket";
  QtEventPump pump_;
  std::vector<Paths> taken_;
  std::unique_ptr<FileReceiver> receiver_;
};

TEST_F(FileHandover, GivesTheRunningProgramThePaths) {
  Listen();
  EXPECT_TRUE(HandOver({"/a/YARD.RDB", "/b/with blank & ü.qxt"}));
  EXPECT_TRUE(HandOver({"/c"}));
  EXPECT_THAT(taken_,
              ElementsAre(ElementsAre("/a/YARD.RDB", "/b/with blank & ü.qxt"), ElementsAre("/c")));
}

TEST_F(FileHandover, IsForTheUserAlone) {
  Listen();
  EXPECT_EQ(fs::status(socket_).permissions(), fs::perms::owner_read | fs::perms::owner_write);
}

TEST_F(FileHandover, WaitsForAProgramThatIsStarting) {
  const OneEvent start(Milliseconds{120}, [this] { Listen(); });
  EXPECT_TRUE(HandOver({"/a"}));
  EXPECT_THAT(taken_, ElementsAre(ElementsAre("/a")));
}

TEST_F(FileHandover, ReplacesTheSocketOfAKilledProgram) {
  Listen();
  fs::rename(socket_, folder_ / "kept");
  receiver_.reset();
  fs::rename(folder_ / "kept", socket_);
  EXPECT_FALSE(HandOver({"/a"}, kNoTime));
  Listen();
  EXPECT_TRUE(HandOver({"/a"}));
}

TEST_F(FileHandover, RemovesItsSocketAtTheEndAndNothingElse) {
  Listen();
  receiver_.reset();
  EXPECT_FALSE(fs::exists(socket_));
  folder_.Write("vrx2260.socket", "a file of another program");
  EXPECT_THROW(Listen(), Error);
  EXPECT_TRUE(fs::is_regular_file(socket_));
}

TEST_F(FileHandover, FailsWhereNobodyListensAndWhereTheProgramCloses) {
  EXPECT_FALSE(HandOver({"/a"}, kNoTime));
  const OneEvent close(Milliseconds{20}, [this] { pump_.Close(); });
  EXPECT_FALSE(HandOver({"/a"}));
}

TEST_F(FileHandover, RefusesWhatIsNoListOfAbsolutePaths) {
  Listen();
  using namespace std::string_literals;
  EXPECT_EQ(AnswerTo("/a\0relative\0"s), "refused");
  EXPECT_EQ(AnswerTo("/without its end"), "refused");
  EXPECT_EQ(AnswerTo("\0\0"s), "refused");
  std::string many;
  for (int i = 0; i < 101; ++i) {
    many += "/a\0"s;
  }
  EXPECT_EQ(AnswerTo(many), "refused");
  EXPECT_THAT(taken_, IsEmpty());
  EXPECT_EQ(AnswerTo("/a\0"s), "taken");
}

TEST_F(FileHandover, RefusesAHugeMessage) {
  Listen();
  using namespace std::string_literals;
  EXPECT_EQ(AnswerTo("/"s + std::string(100'000, 'a') + "\0"s), "refused");
  EXPECT_FALSE(HandOver({"/" + std::string(70'000, 'a')}));
  EXPECT_THAT(taken_, IsEmpty());
  EXPECT_TRUE(HandOver({"/" + std::string(60'000, 'a')}));
}

TEST_F(FileHandover, IsNotBlockedByThoseWhoConnectAndSendNothing) {
  Listen();
  std::vector<std::unique_ptr<RawSender>> silent;
  for (int i = 0; i < 30; ++i) {
    silent.push_back(std::make_unique<RawSender>(socket_));
    pump_.Pump(Milliseconds{10});
  }
  EXPECT_TRUE(HandOver({"/a"}));
  silent.clear();
  pump_.Pump(Milliseconds{10});
  EXPECT_TRUE(HandOver({"/b"}));
  EXPECT_THAT(taken_, ElementsAre(ElementsAre("/a"), ElementsAre("/b")));
}

TEST_F(FileHandover, CannotBeAtAPathThatIsTooLongForASocket) {
  socket_ = folder_ / std::string(120, 's');
  EXPECT_THROW(Listen(), Error);
  EXPECT_FALSE(HandOver({"/a"}));
}

}  // namespace
}  // namespace vrx::testing
