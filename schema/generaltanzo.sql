-- General database "generaltanzo": shared by every company of the installation.

-- Structure texts of the activity log (bitacorausuarios.Registro points here);
-- Dato is encoded with key '527'.
CREATE TABLE estructurasm (
    Id INT NOT NULL,
    Dato BLOB,
    PRIMARY KEY (Id)
) ENGINE=InnoDB;

-- Icons of the user interface, looked up by Id or by DESCripcion.
CREATE TABLE iconos (
    Id INT NOT NULL AUTO_INCREMENT,
    DESCripcion VARCHAR(60) NOT NULL DEFAULT '',
    Imagen MEDIUMBLOB,
    PRIMARY KEY (Id),
    KEY DESCripcion (DESCripcion)
) ENGINE=InnoDB;
