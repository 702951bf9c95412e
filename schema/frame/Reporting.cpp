// How a record reports a fault: raised or logged, by its validate flag.

#include "schema/frame/Runtime_p.h"

namespace EMITTERDOSSIERDOC {
namespace Frame {

using RECORDKIT::ERROR;
using RECORDKIT::WARNING;

void Internal::report(const Record& r, RKException& e)
{
    if (r.GetValidate())
        Internal::RecordAccess::traceOrThrow(r, ERROR, e, true, true);
    else
        Internal::RecordAccess::trace(r, WARNING, e);
}

void Internal::reportSoft(const Record& r, RKException& e)
{
    if (r.GetValidate())
        Internal::RecordAccess::traceOrThrow(r, ERROR, e, false, true);
    else
        Internal::RecordAccess::trace(r, WARNING, e);
}

void Internal::lengthError(const Record& r)
{
    BinaryParsingException e(
        r.GetObjectName() +
        QStringLiteral("::SetBinary(...): Length error occurred during processing of binary representation"));
    Internal::RecordAccess::traceOrThrow(r, ERROR, e, true, true);
    e.Raise();  // not reached: TraceOrThrow raises
}

}  // namespace Frame
}  // namespace EMITTERDOSSIERDOC
