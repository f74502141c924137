#pragma once

#include "core/interfaces/BackgroundRunner.h"
#include "core/interfaces/ExportPresenting.h"
#include "core/interfaces/MainThread.h"
#include "core/model/AppModelServices.h"
#include "platform/UserFolders.h"

#include <memory>
#include <string>

namespace quillbook {

/// What the model needs below the window: the library, the sources, the caches and the preferences of the
/// user of these folders.
AppModelServices applicationServices(const UserFolders& folders, std::shared_ptr<MainThread> mainThread,
                                     std::shared_ptr<BackgroundRunner> runner,
                                     std::shared_ptr<ExportPresenting> presence);

/// Where below the home folder a copied library and a device backup have to lie, for a system that does not
/// put them there itself.
std::string placesHint();

} // namespace quillbook
