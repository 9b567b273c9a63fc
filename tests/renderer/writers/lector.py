#!/usr/bin/python3
"""Independent readers for the writer tests: each mode reads a file with a library that
shares no code with ours and prints what it found, one item a line, tab separated.

  lector.py xls ARCHIVO [MAX]      sheets and cells through xlrd (BIFF8)
  lector.py xlsx ARCHIVO [MAX]     sheets and cells through openpyxl
  lector.py cfb ARCHIVO NOMBRE=ESPERADO...   streams through xlrd's compound-file reader
  lector.py csv ARCHIVO            rows through Python's csv module
  lector.py rtf ARCHIVO            paragraphs through unrtf, tab runs as one tab

MAX limits the cells printed per sheet to the first and last MAX rows."""
import csv
import datetime
import sys


def esc(v):
    return str(v).replace("\\", "\\\\").replace("\t", "\\t").replace("\n", "\\n").replace("\r", "\\r")


def filas_a_mostrar(n, maximo):
    if maximo is None or n <= 2 * maximo:
        return range(n)
    return list(range(maximo)) + list(range(n - maximo, n))


def xls(ruta, maximo):
    import xlrd
    libro = xlrd.open_workbook(ruta, formatting_info=True)
    impresion = impresion_xls(ruta, libro)
    print("LIBRO", libro.nsheets, libro.codepage, sep="\t")
    for hoja in libro.sheets():
        anchos = [str(hoja.colinfo_map[c].width) if c in hoja.colinfo_map else "-"
                  for c in range(hoja.ncols)]
        print("HOJA", esc(hoja.name), hoja.nrows, hoja.ncols, ",".join(anchos), sep="\t")
        # Frozen rows, then the printing records xlrd leaves aside: fit to pages (width,
        # height), paper, portrait; the filter's column count.
        pagina = impresion.get(hoja.name, {})
        print("VISTA", hoja.horz_split_pos if hoja.panes_are_frozen else 0,
              *pagina.get("setup", ("-", "-", "-", "-")), sep="\t")
        print("FILTRO", pagina.get("filtro", "-"), sep="\t")
        for r in filas_a_mostrar(hoja.nrows, maximo):
            for c in range(hoja.ncols):
                celda = hoja.cell(r, c)
                if celda.ctype == xlrd.XL_CELL_EMPTY:
                    continue
                xf = libro.xf_list[celda.xf_index]
                formato = libro.format_map[xf.format_key].format_str
                negrita = libro.font_list[xf.font_index].bold
                tipo = {xlrd.XL_CELL_NUMBER: "numero", xlrd.XL_CELL_TEXT: "texto",
                        xlrd.XL_CELL_DATE: "fecha"}.get(celda.ctype, str(celda.ctype))
                valor = celda.value
                if tipo == "fecha" and valor < 1:
                    segundos = round(valor * 86400)
                    tipo, valor = "hora", "%02d:%02d:%02d" % (
                        segundos // 3600, segundos // 60 % 60, segundos % 60)
                elif tipo == "fecha":
                    valor = xlrd.xldate.xldate_as_datetime(valor, libro.datemode).isoformat()
                elif tipo == "numero":
                    valor = repr(valor)
                print("CELDA", r, c, tipo, esc(valor), esc(formato), int(bool(negrita)), sep="\t")
    for nombre in libro.name_obj_list:
        hoja, fila0, fila1, col0, col1 = nombre.area2d()
        print("NOMBRE", esc(nombre.name), nombre.scope,
              "%s!R%d:%dC%d:%d" % (hoja.name, fila0 + 1, fila1, col0 + 1, col1), sep="\t")


def impresion_xls(ruta, libro):
    """Per sheet name: SETUP as (fit width or "-" when WSBOOL does not fit the page, fit
    height, paper, portrait) and AUTOFILTERINFO's column count, read from the raw records."""
    import struct
    from xlrd import compdoc
    with open(ruta, "rb") as f:
        flujo = compdoc.CompDoc(f.read(), logfile=sys.stderr).get_named_stream("Workbook")
    resultado, hoja, ajusta, pos = {}, -1, False, 0
    while pos + 4 <= len(flujo):
        tipo, largo = struct.unpack_from("<HH", flujo, pos)
        datos = flujo[pos + 4:pos + 4 + largo]
        pos += 4 + largo
        if tipo == 0x0809 and struct.unpack_from("<H", datos, 2)[0] == 0x0010:
            hoja += 1
            ajusta = False
        elif hoja < 0:
            continue
        nombre = libro.sheet_by_index(hoja).name
        if tipo == 0x0081:
            ajusta = bool(struct.unpack_from("<H", datos)[0] & 0x0100)
        elif tipo == 0x00A1:
            papel, _, _, ancho, alto, opciones = struct.unpack_from("<6H", datos)
            resultado.setdefault(nombre, {})["setup"] = (
                ancho if ajusta else "-", alto, papel, int(bool(opciones & 2)))
        elif tipo == 0x009D:
            resultado.setdefault(nombre, {})["filtro"] = struct.unpack_from("<H", datos)[0]
    return resultado


def xlsx(ruta, maximo):
    import openpyxl
    import re
    import zipfile
    # openpyxl takes any text starting with "=" for a formula: count real ones in the XML.
    with zipfile.ZipFile(ruta) as z:
        formulas = sum(len(re.findall(rb"<f[ >]", z.read(n)))
                       for n in z.namelist() if n.startswith("xl/worksheets/"))
    print("FORMULAS", formulas, sep="\t")
    libro = openpyxl.load_workbook(ruta, read_only=False)
    print("LIBRO", len(libro.worksheets), sep="\t")
    for hoja in libro.worksheets:
        nf, nc = hoja.max_row, hoja.max_column
        anchos = []
        for c in range(1, nc + 1):
            letra = openpyxl.utils.get_column_letter(c)
            dim = hoja.column_dimensions.get(letra)
            anchos.append(str(round(dim.width, 2)) if dim is not None and dim.width else "-")
        print("HOJA", esc(hoja.title), nf, nc, ",".join(anchos), sep="\t")
        congelada = hoja.freeze_panes
        ajuste = hoja.sheet_properties.pageSetUpPr
        ancho, alto = hoja.page_setup.fitToWidth, hoja.page_setup.fitToHeight  # None: 1
        print("VISTA", int(congelada[1:]) - 1 if congelada else 0,
              (1 if ancho is None else ancho) if ajuste is not None and ajuste.fitToPage else "-",
              1 if alto is None else alto, hoja.page_setup.paperSize,
              int(hoja.page_setup.orientation != "landscape"), sep="\t")
        print("FILTRO", hoja.auto_filter.ref or "-", hoja.print_title_rows or "-", sep="\t")
        for r in filas_a_mostrar(nf, maximo):
            for c in range(nc):
                celda = hoja.cell(row=r + 1, column=c + 1)
                v = celda.value
                if v is None:
                    continue
                if isinstance(v, datetime.datetime):
                    tipo, valor = "fecha", v.isoformat()
                elif isinstance(v, datetime.time):
                    tipo, valor = "hora", v.isoformat()
                elif isinstance(v, (int, float)) and not isinstance(v, bool):
                    tipo, valor = "numero", repr(float(v))
                elif isinstance(v, str) and v.startswith("="):
                    tipo, valor = "formula", v
                else:
                    tipo, valor = "texto", v
                print("CELDA", r, c, tipo, esc(valor), esc(celda.number_format),
                      int(bool(celda.font.b)), sep="\t")


def cfb(ruta, pares):
    from xlrd import compdoc
    with open(ruta, "rb") as f:
        datos = f.read()
    doc = compdoc.CompDoc(datos, logfile=sys.stderr)
    for par in pares:
        nombre, esperado = par.split("=", 1)
        with open(esperado, "rb") as f:
            contenido = f.read()
        leido = doc.get_named_stream(nombre)
        if leido is None:
            print("FLUJO", nombre, "falta", sep="\t")
        else:
            print("FLUJO", nombre, len(leido), "igual" if leido == contenido else "distinto",
                  sep="\t")


def csv_(ruta):
    with open(ruta, newline="", encoding="utf-8-sig") as f:
        for fila in csv.reader(f, strict=True):
            print("FILA", *[esc(v) for v in fila], sep="\t")


def rtf(ruta):
    import html
    import re
    import subprocess
    salida = subprocess.run(["unrtf", "--html", ruta], check=True, capture_output=True).stdout
    cuerpo = salida.decode("utf-8").split("<body>", 1)[1].replace("\n", "")
    for parrafo in cuerpo.split("<br>"):
        texto = re.sub(r"(&nbsp;)+", "\t", re.sub(r"<[^>]*>", "", parrafo))
        texto = html.unescape(texto).strip("\t")
        if texto.strip():
            print("PARRAFO", esc(texto), sep="\t")


def main():
    modo, ruta, resto = sys.argv[1], sys.argv[2], sys.argv[3:]
    maximo = int(resto[0]) if resto and modo in ("xls", "xlsx") else None
    lectores = {"xls": lambda: xls(ruta, maximo), "xlsx": lambda: xlsx(ruta, maximo),
                "cfb": lambda: cfb(ruta, resto), "rtf": lambda: rtf(ruta), "csv": lambda: csv_(ruta)}
    if modo not in lectores:
        sys.exit("modo desconocido: " + modo)
    lectores[modo]()


if __name__ == "__main__":
    main()
