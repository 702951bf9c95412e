#pragma once

namespace RECORDKIT {

// Kind of object a record stands for. Schema objects only pass it through.
enum ObjectTypes { Undefined = 0 };

}  // namespace RECORDKIT
