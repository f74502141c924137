#pragma once

#include "shell/adapter/AppModelAdapter.h"
#include "shell/adapter/AppearanceAdapter.h"
#include "shell/adapter/AvatarStore.h"
#include "shell/adapter/FolderDialogAdapter.h"

#include <QQmlApplicationEngine>
#include <QQuickWindow>
#include <memory>

namespace quillbook {

/// What the window is made over. All of it outlives the engine.
struct WindowParts {
    AppModelAdapter& model;
    AppearanceAdapter& appearance;
    FolderDialogAdapter& folderDialog;
};

/// Makes the module "Quillbook" and its pictures known to an engine. Once an engine, before anything is
/// loaded.
void prepareScreens(QQmlEngine& engine, const std::shared_ptr<const AvatarStore>& avatars);

enum class StartModel { yes, no };

/// The one window, shown; it starts the model unless told not to. Null where the screens cannot be loaded,
/// which is an error of ours and is told on the standard error stream.
QQuickWindow* showWindow(QQmlApplicationEngine& engine, const WindowParts& parts,
                         StartModel start = StartModel::yes);

} // namespace quillbook
