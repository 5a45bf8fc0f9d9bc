#pragma once

#include "model/downloadrequest.h"
#include "model/downloadtask.h"

// One row of the queue as it is kept on disk: the task as the user last saw it, the request it
// was made from (so that it can be retried), and its place in the queue.
struct StoredTask
{
    DownloadTask task;
    DownloadRequest request;
    // Rows come back in increasing order of this number.
    qint64 ordinal = 0;
};
