#include "server/families.h"

#include "fiscal/serial.h"
#include "server/elzab_jobs.h"
#include "server/posnet_jobs.h"

namespace {

// One entry per printer family that reaches a printer; the handlers live with
// the printer drivers. Family 1 is ELZAB, 2 POSNET with 40-column receipts, 3
// POSNET with 24-column receipts (the receipt handler reads the width from
// JobRequest::family). The table ends with family 0.
constexpr FamilyJobs kFamilyJobs[] = {
    {1, ElzabReceipt, ElzabDailyReport, ElzabPeriodReport, ElzabDrawer, ElzabReleaseAtExit},
    {2, PosnetReceipt, PosnetDailyReport, PosnetPeriodReport, PosnetDrawer, PosnetCloseAtExit},
    {3, PosnetReceipt, PosnetDailyReport, PosnetPeriodReport, PosnetDrawer, PosnetCloseAtExit},
    {},
};

}  // namespace

const FamilyJobs* FindFamilyJobs(int family) {
  for (const FamilyJobs* f = kFamilyJobs; f->family != 0; ++f)
    if (f->family == family) return f;
  return nullptr;
}

uint8_t DispatchJob(uint8_t kind, JobRequest& job) {
  const FamilyJobs* jobs = FindFamilyJobs(job.family);
  if (jobs == nullptr) return 0;
  JobHandler handler = nullptr;
  switch (kind) {
    case kJobReceipt: handler = jobs->receipt; break;
    case kJobDailyReport: handler = jobs->dailyReport; break;
    case kJobPeriodReport: handler = jobs->periodReport; break;
    case kJobDrawer: handler = jobs->drawer; break;
    default: break;
  }
  return handler != nullptr ? handler(job) : 0;
}

void ReleaseAllLines() {
  for (const FamilyJobs* f = kFamilyJobs; f->family != 0; ++f)
    if (f->releaseLine != nullptr) f->releaseLine();
}
