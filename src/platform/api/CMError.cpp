#include "CMError.h"

TrString CMError::DefaultTitle() {
    return TrString("CMError", "Error");
}
