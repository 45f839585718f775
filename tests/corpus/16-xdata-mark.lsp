(defun c:work (/ e)
  (regapp "OFFICE_QA")
  (setq e (entlast))
  (if e
    (progn
      (entmod (append (entget e) (list (list -3 (list "OFFICE_QA" '(1000 . "checked") (cons 1070 1))))))
      (princ (cdr (assoc -3 (entget e '("OFFICE_QA")))))))
  (princ))
