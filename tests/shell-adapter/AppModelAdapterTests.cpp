#include "shell/adapter/AppModelAdapter.h"
#include "tests/support/ModelHarness.h"

#include <QMetaMethod>
#include <map>
#include <set>

#include <gmock/gmock.h>

namespace quillbook::test {
namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::IsSupersetOf;

class DesktopFake final : public FileRevealing, public FolderChoosing, public SoundPlaying {
public:
    void reveal(const std::filesystem::path& file) override { calls.push_back("reveal " + file.string()); }
    void open(const std::filesystem::path& file) override { calls.push_back("open " + file.string()); }
    void playCompletion() override { calls.emplace_back("sound"); }
    void chooseFolder(const FolderQuestion& question, Answer answer) override {
        calls.push_back(question.title + "|" + question.prompt + "|" + question.folder.string());
        waiting = std::move(answer);
    }

    std::vector<std::string> calls;
    Answer waiting;
};

/// Writes down which signals an object sends.
class SignalRecorder final : public QObject {
public:
    explicit SignalRecorder(QObject& sender) {
        const QMetaObject& meta = *sender.metaObject();
        const int slot = metaObject()->indexOfMethod("deleteLater()");
        (void)slot;
        for (int each = meta.propertyOffset(); each < meta.propertyCount(); ++each)
            if (meta.property(each).hasNotifySignal()) watch(sender, meta.property(each));
    }
    std::set<std::string> properties() const { return heard_; }
    void clear() { heard_.clear(); }

private:
    void watch(QObject& sender, const QMetaProperty& property);

    std::set<std::string> heard_;
};

} // namespace
} // namespace quillbook::test
