#include "renderer/writers/SalidaTabular.h"

#include <algorithm>
#include <cmath>
#include <numeric>

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

int CodigoPapel(double ancho, double alto) {
    const double corto = std::min(ancho, alto), largo = std::max(ancho, alto);
    struct Papel {
        double corto, largo;
        int codigo;
    };
    static constexpr Papel kPapeles[] = {
        {612, 792, 1}, {612, 1008, 5}, {595.28, 841.89, 9}, {612, 936, 14}};
    for (const auto& p : kPapeles)
        if (std::abs(p.corto - corto) < 2 && std::abs(p.largo - largo) < 2) return p.codigo;
    return 0;
}

bool HojaHorizontal(const std::vector<double>& anchos, const ImpresionHoja& impresion) {
    // A character of the sheet's default font is about 5.25 points; the default margins
    // take 0.7 inch a side.
    const double caracteres = std::accumulate(anchos.begin(), anchos.end(), 0.0);
    const double vertical = std::min(impresion.anchoPapel, impresion.altoPapel) - 100.8;
    return caracteres * 5.25 > vertical;
}

}  // namespace paratzorep::renderer
