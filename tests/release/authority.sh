# A certificate authority of a test's own: in this folder ca.pem, and signer.pem with signer.key, which may sign programs.
# Sourced, never run.
openssl req -x509 -newkey rsa:2048 -nodes -subj '/CN=Authority of a test' -days 30 -keyout ca.key -out ca.pem 2>/dev/null
openssl req -newkey rsa:2048 -nodes -subj '/CN=Signer of a test' -keyout signer.key -out signer.csr 2>/dev/null
printf 'extendedKeyUsage=codeSigning\nkeyUsage=digitalSignature\n' > extensions
openssl x509 -req -in signer.csr -CA ca.pem -CAkey ca.key -CAcreateserial -days 20 -extfile extensions -out signer.pem 2>/dev/null
