#pragma once

#include "core/model/TaskSlot.h"

namespace quillbook {

/// One slot for each kind of task that the model owns.
struct AppModelTasks {
    TaskSlot start;             ///< The access check and the list of sources.
    TaskSlot preparation;       ///< The opening of a source.
    TaskSlot search;            ///< The wait after a change of the search text.
    TaskSlot list;              ///< A question to the store for its conversations.
    TaskSlot priorArchive;      ///< The look for an earlier album.
    TaskSlot attachmentStorage; ///< The count of the attachments.
    TaskSlot cacheRecovery;     ///< The search of the caches, or the copying from them.
    TaskSlot exporting;

    void cancelAll() {
        for (TaskSlot* slot : {&exporting, &start, &preparation, &search, &list, &priorArchive,
                               &attachmentStorage, &cacheRecovery})
            slot->cancel();
    }
    /// They were about a conversation that is no longer selected.
    void forgetSurveys() {
        for (TaskSlot* slot : {&priorArchive, &attachmentStorage, &cacheRecovery}) {
            slot->cancel();
            slot->clear();
        }
    }
    /// Whether the selected conversation was ever asked about.
    bool haveSurveyed() const { return attachmentStorage.isOccupied() || cacheRecovery.isOccupied(); }
};

} // namespace quillbook
