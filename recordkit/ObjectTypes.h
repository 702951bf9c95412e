#pragma once

namespace RECORDKIT {

/// Kind of object a record stands for. Schema objects only pass it through.
enum ObjectTypes {
    Undefined = 0,  ///< The type of every object the library makes.
};

}  // namespace RECORDKIT
