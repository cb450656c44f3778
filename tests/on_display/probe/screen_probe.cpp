// A plugin that the tests load into the built program: it reports what is on the screen. It only
// reads. A client that connects to the socket VRX_SCREEN_PROBE gets one description and the end of
// the stream; the answer comes from the thread of the windows.

#include <QGenericPlugin>
#include <QJsonDocument>
#include <QSocketNotifier>
#include <QtGlobal>

#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include "on_display/probe/screen_description.h"

namespace vrx::testing {

class ScreenProbe : public QObject {
 public:
  explicit ScreenProbe(const QByteArray& path) : listener_(Listen(path)) {
    auto* asked = new QSocketNotifier(listener_, QSocketNotifier::Read, this);
    connect(asked, &QSocketNotifier::activated, this, [this] { Answer(); });
  }
  ~ScreenProbe() override { close(listener_); }
  Q_DISABLE_COPY_MOVE(ScreenProbe)

 private:
  static int Listen(const QByteArray& path) {
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    qstrncpy(static_cast<char*>(address.sun_path), path.constData(), sizeof address.sun_path);
    unlink(path.constData());
    const int listener = socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
    if (bind(listener, reinterpret_cast<sockaddr*>(&address), sizeof address) != 0 ||  // NOLINT
        listen(listener, 4) != 0) {
      qFatal("The screen probe cannot listen on %s.", path.constData());
    }
    return listener;
  }

  void Answer() const {
    const int caller = accept4(listener_, nullptr, nullptr, SOCK_CLOEXEC);
    if (caller < 0) {
      return;
    }
    const QByteArray said = QJsonDocument(DescribeScreen()).toJson(QJsonDocument::Compact);
    qsizetype sent = 0;
    while (sent < said.size()) {
      const ssize_t more = send(caller, said.constData() + sent,
                                static_cast<std::size_t>(said.size() - sent), MSG_NOSIGNAL);
      if (more <= 0) {
        break;
      }
      sent += more;
    }
    close(caller);
  }

  int listener_;
};

class ScreenProbePlugin : public QGenericPlugin {
  Q_OBJECT
  Q_PLUGIN_METADATA(IID QGenericPluginFactoryInterface_iid FILE "probe.json")

 public:
  QObject* create(const QString& /*key*/, const QString& /*specification*/) override {
    return new ScreenProbe(qgetenv("VRX_SCREEN_PROBE"));
  }
};

}  // namespace vrx::testing

#include "screen_probe.moc"
