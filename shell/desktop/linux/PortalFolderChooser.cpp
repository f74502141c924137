#include "shell/desktop/linux/PortalFolderChooser.h"

#include "shell/desktop/linux/FileAddress.h"

#include <QByteArray>
#include <QDBusArgument>
#include <QDBusObjectPath>
#include <QDBusVariant>
#include <QGuiApplication>
#include <QPointer>
#include <QTimer>
#include <QUuid>
#include <QVariantMap>
#include <utility>

namespace quillbook {
namespace {

const QString service = QStringLiteral("org.freedesktop.portal.Desktop");
const QString path = QStringLiteral("/org/freedesktop/portal/desktop");
const QString chooser = QStringLiteral("org.freedesktop.portal.FileChooser");
const QString requestInterface = QStringLiteral("org.freedesktop.portal.Request");

/// The first version of the portal that knows the option "directory".
constexpr uint firstVersionWithFolders = 3;

QDBusMessage versionCall() {
    return QDBusMessage::createMethodCall(service, path, QStringLiteral("org.freedesktop.DBus.Properties"),
                                          QStringLiteral("Get"))
           << chooser << QStringLiteral("version");
}

bool canChooseFolders(const QDBusMessage& reply) {
    if (!isReply(reply, "v")) return false;
    const QVariant version = qvariant_cast<QDBusVariant>(reply.arguments().constFirst()).variant();
    return version.typeId() == QMetaType::UInt && version.toUInt() >= firstVersionWithFolders;
}

/// The portal makes a request's path out of its caller's name on the bus and the token.
QString requestPath(const QDBusConnection& bus, const QString& token) {
    const QString sender = bus.baseService().mid(1).replace(QLatin1Char('.'), QLatin1Char('_'));
    return path + QStringLiteral("/request/") + sender + QLatin1Char('/') + token;
}

/// Only on X11 a window has a name that other programs know.
QString parentName(QWindow* window) {
    if (window == nullptr || QGuiApplication::platformName() != QLatin1String("xcb")) return {};
    return QStringLiteral("x11:") + QString::number(window->winId(), 16);
}

QString plainText(const std::string& text) {
    return QString::fromStdString(text).remove(QChar(u'\0'));
}

QVariantMap options(const FolderQuestion& question, const QString& token) {
    QVariantMap given = {{QStringLiteral("handle_token"), token},
                         {QStringLiteral("directory"), true},
                         {QStringLiteral("modal"), true},
                         {QStringLiteral("multiple"), false}};
    // An underscore would mark the letter after it as the button's key.
    const QString prompt = plainText(question.prompt).replace(QLatin1Char('_'), QStringLiteral("__"));
    if (!prompt.isEmpty()) given.insert(QStringLiteral("accept_label"), prompt);
    if (question.folder.is_absolute()) {
        const auto folder = QByteArray::fromStdString(question.folder.native());
        given.insert(QStringLiteral("current_folder"), folder + '\0');
    }
    return given;
}

std::optional<std::filesystem::path> chosenFolder(uint response, const QVariantMap& results) {
    if (response != 0) return std::nullopt;
    const QVariant uris = results.value(QStringLiteral("uris"));
    if (uris.typeId() != QMetaType::QStringList || uris.toStringList().isEmpty()) return std::nullopt;
    return fileAtAddress(uris.toStringList().constFirst());
}

} // namespace

PortalFolderChooser::PortalFolderChooser(std::function<QWindow*()> window, Fallback fallback,
                                         QDBusConnection bus, std::chrono::milliseconds patience,
                                         QObject* parent)
    : QObject(parent), window_(std::move(window)), fallback_(std::move(fallback)), bus_(std::move(bus)),
      patience_(patience), portal_(service, bus_, QDBusServiceWatcher::WatchForUnregistration) {
    // With the portal its dialog is gone, and no response will come.
    QObject::connect(&portal_, &QDBusServiceWatcher::serviceUnregistered, this, [this] {
        if (!request_.isEmpty()) finish(std::nullopt);
    });
}

PortalFolderChooser::~PortalFolderChooser() {
    closeDialog();
}

void PortalFolderChooser::chooseFolder(const FolderQuestion& question, Answer answer) {
    if (answer_) {
        QTimer::singleShot(0, this, [answer = std::move(answer)] { answer(std::nullopt); });
        return;
    }
    question_ = question;
    answer_ = std::move(answer);
    ++questions_;
    callOnBus(bus_, versionCall(), patience_, this, [this](const QDBusMessage& reply) {
        if (canChooseFolders(reply)) return openDialog();
        askFallback();
    });
}

void PortalFolderChooser::openDialog() {
    const QString token = QStringLiteral("quillbook") + QUuid::createUuid().toString(QUuid::Id128);
    // Listening before the call: the response may come as soon as the portal has it.
    follow(requestPath(bus_, token));
    auto call = QDBusMessage::createMethodCall(service, path, chooser, QStringLiteral("OpenFile"));
    call << parentName(window_()) << plainText(question_.title) << options(question_, token);
    callOnBus(bus_, call, patience_, this, [this, question = questions_](const QDBusMessage& reply) {
        if (question != questions_ || request_.isEmpty()) return;
        if (!isReply(reply, "o")) {
            closeDialog();
            return askFallback();
        }
        // Portals before version 0.9 named the request by themselves.
        const auto named = qvariant_cast<QDBusObjectPath>(reply.arguments().constFirst()).path();
        if (named != request_) follow(named);
    });
}

void PortalFolderChooser::follow(const QString& request) {
    request_ = request;
    response_ = std::make_unique<BusSignalListener>(
        bus_, service, request, requestInterface, QStringLiteral("Response"), QStringLiteral("ua{sv}"),
        [this](const QVariantList& values) { takeResponse(values); });
}

void PortalFolderChooser::takeResponse(const QVariantList& values) {
    finish(chosenFolder(values[0].toUInt(), qdbus_cast<QVariantMap>(values[1])));
}

void PortalFolderChooser::closeDialog() {
    if (request_.isEmpty()) return;
    auto call = QDBusMessage::createMethodCall(service, request_, requestInterface, QStringLiteral("Close"));
    call.setAutoStartService(false);
    bus_.send(call);
    request_.clear();
    response_.reset();
}

void PortalFolderChooser::askFallback() {
    fallback_(question_, [self = QPointer(this),
                          question = questions_](const std::optional<std::filesystem::path>& folder) {
        PortalFolderChooser* const alive = self;
        if (alive != nullptr && question == alive->questions_) alive->finish(folder);
    });
}

void PortalFolderChooser::finish(const std::optional<std::filesystem::path>& folder) {
    request_.clear();
    // We may be within the listener's own call.
    if (response_) response_.release()->deleteLater();
    if (const Answer answer = std::exchange(answer_, nullptr)) answer(folder);
}

} // namespace quillbook
