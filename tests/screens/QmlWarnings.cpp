#include "tests/screens/QmlWarnings.h"

#include <QString>
#include <QtGlobal>
#include <cstdio>
#include <mutex>
#include <string>
#include <utility>

#include <gtest/gtest.h>

namespace quillbook::test {
namespace {

std::mutex mutex;
std::string heard;

bool isOfQml(const QString& message) {
    if (message.contains(QLatin1String("This is no picture that can be shown."))) return false;
    for (const char* sign : {"qrc:", "TypeError", "ReferenceError", "Binding loop", "QML "})
        if (message.contains(QLatin1String(sign))) return true;
    return false;
}

void hear(QtMsgType type, const QMessageLogContext& context, const QString& message) {
    const std::string line = qFormatLogMessage(type, context, message).toStdString();
    std::fprintf(stderr, "%s\n", line.c_str());
    if (type == QtDebugMsg || type == QtInfoMsg || !isOfQml(message)) return;
    const std::scoped_lock lock(mutex);
    heard += line + "\n";
}

class WarningListener final : public testing::EmptyTestEventListener {
    void OnTestStart(const testing::TestInfo& /*test*/) override { take(); }
    void OnTestEnd(const testing::TestInfo& /*test*/) override {
        const std::string warnings = take();
        if (!warnings.empty()) ADD_FAILURE() << "QML warned:\n" << warnings;
    }
    static std::string take() {
        const std::scoped_lock lock(mutex);
        return std::exchange(heard, std::string());
    }
};

} // namespace

void failOnQmlWarnings() {
    qInstallMessageHandler(hear);
    testing::UnitTest::GetInstance()->listeners().Append(new WarningListener);
}

} // namespace quillbook::test
