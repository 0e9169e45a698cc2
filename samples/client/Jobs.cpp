// IJobControl: a job whose response the client reads itself.
#include "samples/client/Client.h"

namespace sample {

void ShowJobs(const CPComPtr<wncom::IWendrel>& agent, std::ostream& out) {
    const auto jobs = Ask<wncom::IJobControl>(agent);
    const Bstr ticket(OLESTR("<intentTicket><jobName>Poster</jobName></intentTicket>"));
    Bstr response;
    Check(jobs->SubmitJob(ticket.get(), response.put()), "SubmitJob");
    const Bstr job = ElementText(response, OLESTR("JobUri"));
    out << "the job is: " << Shown(job) << "\n";

    // Neither is provided: the answer is E_FAIL whatever the job.
    Bstr state;
    out << "QueryJobStatus: " << Hex(jobs->QueryJobStatus(job.get(), state.put())) << "\n";
    out << "CancelJob: " << Hex(jobs->CancelJob(job.get())) << "\n";
    out << "a null ticket: " << Hex(jobs->SubmitJob(nullptr, response.put())) << "\n";
}

}  // namespace sample
