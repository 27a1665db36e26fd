# shellcheck shell=bash
# Keys and certificates for the test of signed releases: sourced, not run.
#
#   make_keys FOLDER PASSWORD     in FOLDER: root.pem; signer.key (locked by PASSWORD), signer.pem and both as signer.p12;
#                                 alone.pem and alone.p12, a certificate that signed itself; service.cnf for `openssl ts`
#
# The signer's and the service's certificates are the root's.

# make_key NAME SUBJECT USE OPENSSL-ARGUMENT…
make_key() {
  local name=$1 subject=$2 use=$3
  shift 3
  openssl req -newkey rsa:2048 -keyout "$name.key" -subj "/CN=$subject" -out "$name.csr" "$@"
  openssl x509 -req -in "$name.csr" -CA root.pem -CAkey root.key -CAcreateserial -days 3650 \
    -extfile <(printf 'extendedKeyUsage=%s\n' "$use") -out "$name.pem"
}

make_keys() (
  set -e
  cd "$1"
  openssl req -x509 -newkey rsa:2048 -nodes -keyout root.key -subj '/CN=KWA test root' -days 3650 -out root.pem
  make_key signer 'KWA test signer' codeSigning -passout "pass:$2"
  openssl pkcs12 -export -inkey signer.key -in signer.pem -passin "pass:$2" -passout "pass:$2" -out signer.p12
  openssl req -x509 -newkey rsa:2048 -nodes -keyout alone.key -subj '/CN=KWA test, alone' -days 3650 \
    -addext extendedKeyUsage=codeSigning -out alone.pem
  openssl pkcs12 -export -inkey alone.key -in alone.pem -passout pass: -out alone.p12
  make_key service 'KWA test timestamps' critical,timeStamping -nodes
  printf '01\n' >service.serial
  cat >service.cnf <<END
[tsa]
default_tsa = service
[service]
serial = $PWD/service.serial
signer_digest = sha256
signer_cert = $PWD/service.pem
signer_key = $PWD/service.key
certs = $PWD/root.pem
default_policy = 1.3.6.1.4.1.1
digests = sha256
END
)
