#pragma once

#include <cstddef>
#include <functional>
#include <string>

#include "vek0host/session.h"

namespace vek0::tool {

struct WorkerOptions {
  int workers = 1;     ///< processes at a time
  double timeout = 0;  ///< seconds for each job; 0: no limit
};

/// Does each job in a process of its own. What a job prints is passed on when all earlier jobs have
/// ended, and so is what it adds to the session's log; an answer of 0 counts for all. `ended` is
/// then called with the worst failure of the job and, if the process did not end by itself, how it
/// died.
///
/// Where processes cannot be duplicated, the jobs are done here, one after the other.
void runWorkers(std::size_t jobs, const WorkerOptions& options, host::Session& session,
                const std::function<void(std::size_t job)>& work,
                const std::function<void(std::size_t job, host::Failure worst,
                                         const std::string& death)>& ended);

}  // namespace vek0::tool
