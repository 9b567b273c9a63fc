#include "renderer/writers/SalidaTabular.h"

namespace paratzorep::renderer {
namespace {

// Days since 1970-01-01 of a proleptic Gregorian date.
long DiasCiviles(long y, unsigned m, unsigned d) {
    y -= m <= 2;
    const long era = (y >= 0 ? y : y - 399) / 400;
    const unsigned yoe = static_cast<unsigned>(y - era * 400);
    const unsigned doy = (153 * (m + (m > 2 ? -3 : 9)) + 2) / 5 + d - 1;
    const unsigned doe = yoe * 365 + yoe / 4 - yoe / 100 + doy;
    return era * 146097 + static_cast<long>(doe) - 719468;
}

}  // namespace

double SerieFecha(int anio, int mes, int dia, int hora, int minuto, int segundo) {
    long dias = DiasCiviles(anio, static_cast<unsigned>(mes), static_cast<unsigned>(dia)) -
                DiasCiviles(1899, 12, 30);
    return static_cast<double>(dias) + (hora * 3600 + minuto * 60 + segundo) / 86400.0;
}

}  // namespace paratzorep::renderer
