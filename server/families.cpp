#include "server/families.h"

#include "fiscal/elzab.h"
#include "fiscal/serial.h"
#include "server/elzab_jobs.h"
#include "server/jobs.h"
#include "server/output.h"
#include "server/posnet_jobs.h"
#include "server/rows.h"

namespace {

// One entry per printer family that reaches a printer; the handlers live with
// the printer drivers. Family 1 is ELZAB, 2 POSNET with 40-column receipts, 3
// POSNET with 24-column receipts (the receipt handler reads the width from
// JobRequest::family). The table ends with family 0.
constexpr FamilyJobs kFamilyJobs[] = {
    {1, ElzabReceipt, ElzabDailyReport, ElzabPeriodReport, ElzabDrawer, ElzabReleaseAtExit, ElzabSettleReceipt},
    {2, PosnetReceipt, PosnetDailyReport, PosnetPeriodReport, PosnetDrawer, PosnetCloseAtExit, PosnetSettleAtPort},
    {3, PosnetReceipt, PosnetDailyReport, PosnetPeriodReport, PosnetDrawer, PosnetCloseAtExit, PosnetSettleAtPort},
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

void SettlePrintersAtStart(const PrinterRows& rows) {
  for (int i = 0; i < rows.count; ++i) {
    const PrinterRowFields row = SplitPrinterRow(rows.row[i]);
    const FamilyJobs* jobs = FindFamilyJobs(row.family);
    if (jobs == nullptr || jobs->settleReceipt == nullptr) continue;
    bool seen = false;  // families 2 and 3 share the POSNET line
    for (int j = 0; j < i && !seen; ++j) {
      const PrinterRowFields earlier = SplitPrinterRow(rows.row[j]);
      const FamilyJobs* other = FindFamilyJobs(earlier.family);
      seen = other != nullptr && other->settleReceipt == jobs->settleReceipt && earlier.port == row.port;
    }
    if (seen) continue;
    const ShortText line = SettleStartLine(jobs->settleReceipt(row.port), row.family, row.port);
    if (!line.Empty()) WriteLine(line);
  }
}
