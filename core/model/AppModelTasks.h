#pragma once

#include "core/model/TaskSlot.h"

namespace quillbook {

/// One slot for each kind of task that the model owns.
struct AppModelTasks {
    TaskSlot start;       ///< The access check and the list of sources.
    TaskSlot preparation; ///< The opening of a source.
    TaskSlot search;      ///< The wait after a change of the search text.
    TaskSlot list;        ///< A question to the store for its conversations.
    TaskSlot priorArchive;
    TaskSlot attachmentStorage;
    TaskSlot cacheRecovery;
    TaskSlot exporting;

    void cancelAll() {
        for (TaskSlot* slot : {&exporting, &start, &preparation, &search, &list, &priorArchive,
                               &attachmentStorage, &cacheRecovery})
            slot->cancel();
    }
};

} // namespace quillbook
