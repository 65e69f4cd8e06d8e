#include "series/double_double/size_units.h"

namespace zvp {

const DoubleDouble& ln_2() {
    static const DoubleDouble value = DoubleDouble::parse("0.6931471805599453094172321214581765680755");
    return value;
}

const DoubleDouble& nats_per_word() {
    static const DoubleDouble value = DoubleDouble::parse("22.18070977791824990135142788666165017842");
    return value;
}

const DoubleDouble& words_per_nat() {
    static const DoubleDouble value = DoubleDouble::parse("0.04508422002778010647999764628130912929458");
    return value;
}

const DoubleDouble& digits_per_nat() {
    static const DoubleDouble value = DoubleDouble::parse("0.4342944819032518276511289189166050822944");
    return value;
}

} // namespace zvp
