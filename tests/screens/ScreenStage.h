#pragma once

#include "shell/adapter/AppModelAdapter.h"
#include "shell/adapter/AppearanceAdapter.h"
#include "shell/adapter/FolderDialogAdapter.h"
#include "tests/support/ModelHarness.h"
#include "tests/support/TemporaryFolder.h"

#include <QImage>
#include <QQmlApplicationEngine>
#include <QQuickWindow>
#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace quillbook::test {

class FixedAppearance final : public AppearanceFollowing {
public:
    Appearance appearance() const override { return value; }
    void observe(std::function<void()> observer) override { observer_ = std::move(observer); }
    void change(const Appearance& appearance) {
        value = appearance;
        if (observer_) observer_();
    }

    Appearance value;

private:
    std::function<void()> observer_;
};

/// Writes down what the screens asked of the desktop.
class DesktopRecorder final : public FileRevealing, public FolderChoosing, public SoundPlaying {
public:
    void reveal(const std::filesystem::path& file) override { calls.push_back("reveal " + file.string()); }
    void open(const std::filesystem::path& file) override { calls.push_back("open " + file.string()); }
    void playCompletion() override { calls.emplace_back("sound"); }
    void chooseFolder(const FolderQuestion& question, Answer answer) override {
        calls.push_back("choose " + question.title + " " + question.prompt + " " + question.folder.string());
        waiting = std::move(answer);
    }

    std::vector<std::string> calls;
    Answer waiting;
};

/// The real window without a desktop, over a model among fakes. Nothing moves in it but when a test says so.
class ScreenStage : public ModelHarness {
public:
    ScreenStage();
    ~ScreenStage() override;

    using ModelHarness::background;
    using ModelHarness::caches;
    using ModelHarness::checker;
    using ModelHarness::destinationIsWritable;
    using ModelHarness::mainThread;
    using ModelHarness::makeModel;
    using ModelHarness::model;
    using ModelHarness::preferences;
    using ModelHarness::priorArchive;
    using ModelHarness::provider;
    using ModelHarness::settle;
    using ModelHarness::startedModel;

    /// Makes the window over the model as it is, and lets it settle.
    void open(const Appearance& appearance = {.hasReducedMotion = true});
    /// Lets the window draw what changed.
    void refresh();
    QImage picture();
    /// Sends a key to what has the focus.
    void press(int key, Qt::KeyboardModifiers modifiers = Qt::NoModifier, const QString& text = {});
    void type(const QString& text);
    /// A click in the middle of an item.
    void click(const QQuickItem* item);
    /// Lets time pass in the event loop.
    void wait(int milliseconds);
    /// The visible item with this accessible name and of this class, or null.
    QQuickItem* find(const char* className, const QString& name) const;
    /// As `find`, all of them.
    std::vector<QQuickItem*> findAll(const char* className, const QString& name) const;
    /// Every visible item with this property.
    std::vector<QQuickItem*> itemsWith(const char* property) const;
    /// The accessible name of what has the focus.
    QString focusedName() const;

    TemporaryFolder folder; ///< For files that a state needs.
    AdapterServices services;
    std::shared_ptr<DesktopRecorder> desktop = std::make_shared<DesktopRecorder>();
    std::shared_ptr<FixedAppearance> appearance = std::make_shared<FixedAppearance>();
    std::unique_ptr<AppModelAdapter> adapter;
    QQuickWindow* window = nullptr;

private:
    FolderDialogAdapter folderDialog_;
    std::unique_ptr<AppearanceAdapter> appearanceAdapter_;
    std::unique_ptr<QQmlApplicationEngine> engine_;
};

} // namespace quillbook::test
